#pragma once

// The dashboard's keys in HKEY_CURRENT_USER that the plug-in reads and writes, too.

#define VL_DASHBOARD_KEY L"SOFTWARE\\Veltrano\\Applications\\DashBoard"
inline constexpr wchar_t dashboardKey[] = VL_DASHBOARD_KEY;
inline constexpr wchar_t dashboardCardKey[] = VL_DASHBOARD_KEY L"\\IDCard"; // the status input
inline constexpr wchar_t dashboardCategoriesKey[] = VL_DASHBOARD_KEY L"\\QLCategories";
inline constexpr wchar_t dashboardDismissedKey[] = VL_DASHBOARD_KEY L"\\DismissMessages";
#undef VL_DASHBOARD_KEY

inline constexpr wchar_t dashboardLastCategory[] = L"LastQLCategory"; // a value of dashboardKey
inline constexpr wchar_t dashboardCardStatus[] = L"IDCard_SS";        // a value of dashboardCardKey
