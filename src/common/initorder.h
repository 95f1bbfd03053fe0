#pragma once

// The globals whose construction order matters, low first; destruction runs the other way round.
// The link order of objects says nothing about it, so each of them names its place here.
inline constexpr int initBaseModule = 200;
inline constexpr int initComModule = 210;
inline constexpr int initOsVersion = 220;
inline constexpr int initTracer = 230;
inline constexpr int initCaches = 235; // what is made on first use and freed at the end
inline constexpr int initModule = 240;
