// The numbers of the resources, for the code and for the resource scripts alike: nothing but plain
// definitions.
#ifndef VL_RESOURCEIDS_H
#define VL_RESOURCEIDS_H

// Strings of the language files.
#define IDS_NOTIFICATION_CAPTION 1026
#define IDS_STATUS_DISABLED 1029
#define IDS_STATUS_READY 1031
#define IDS_PLUGIN_NAME 1041
#define IDS_PLUGIN_DESCRIPTION 1052
#define IDS_STATUS_AT_RISK 1053
#define IDS_STATUS_NOT_SET_UP 1054

// In the branding DLL.
#define IDS_PRODUCT_NAME 103
#define IDI_PRODUCT 193

// In the host's program: the path of the branding key, in place of the default.
#define IDS_HOST_BRANDING_KEY 900

// Carried by the DLL for others.
#define IDI_PLUGIN 101
#define IDB_PLUGIN_SMALL 201
#define IDB_PLUGIN_LARGE 202

#endif
