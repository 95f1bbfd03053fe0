#include "shared/statusnames.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace tools {

namespace {

struct entry_t {
    uint32_t code;
    const char* name;
    const char* text;
};

// Both tables are in the order of their codes.
constexpr entry_t statuses[] = {
    {0x00000000, "S_OK", "done"},
    {0x00000001, "S_FALSE", "done, with the answer no"},
    {0x80004001, "E_NOTIMPL", "not implemented"},
    {0x80004002, "E_NOINTERFACE", "no such interface"},
    {0x80004003, "E_POINTER", "a pointer is null"},
    {0x80004004, "E_ABORT", "aborted"},
    {0x80004005, "E_FAIL", "unspecified failure"},
    {0x8000FFFF, "E_UNEXPECTED", "unexpected failure"},
    {0x80010106, "RPC_E_CHANGED_MODE", "the thread has another threading model"},
    {0x80020003, "DISP_E_MEMBERNOTFOUND", "no such member"},
    {0x80020005, "DISP_E_TYPEMISMATCH", "the variant's type does not fit"},
    {0x80020008, "DISP_E_BADVARTYPE", "no such variant type"},
    {0x8002000A, "DISP_E_OVERFLOW", "out of range"},
    {0x8002000B, "DISP_E_BADINDEX", "the array has no such index"},
    {0x8002000D, "DISP_E_ARRAYISLOCKED", "the array is locked"},
    {0x80040110, "CLASS_E_NOAGGREGATION", "the class can't be aggregated"},
    {0x80040111, "CLASS_E_CLASSNOTAVAILABLE", "the module has no such class"},
    {0x80040154, "REGDB_E_CLASSNOTREG", "the class is not registered"},
    {0x800401F0, "CO_E_NOTINITIALIZED", "the component model is not initialised on the thread"},
    {0x800401F3, "CO_E_CLASSSTRING", "not a class identifier"},
    {0x80090005, "NTE_BAD_DATA", "bad data"},
    {0x8009000B, "NTE_BAD_KEY_STATE", "the key can't be used in its state"},
    {0x80090016, "NTE_BAD_KEYSET", "no such key set"},
    {0x80092002, "CRYPT_E_BAD_ENCODE", "could not be encoded or decoded"},
    {0x80093100, "CRYPT_E_ASN1_ERROR", "not well-formed DER"},
    {0x80093101, "CRYPT_E_ASN1_INTERNAL", "failure inside the DER decoder"},
    {0x80093102, "CRYPT_E_ASN1_EOD", "the DER data end too early"},
    {0x80093103, "CRYPT_E_ASN1_CORRUPT", "the DER data are corrupt"},
    {0x80093104, "CRYPT_E_ASN1_LARGE", "a DER value is too large"},
    {0x80093106, "CRYPT_E_ASN1_MEMORY", "no memory for the DER data"},
    {0x8009310B, "CRYPT_E_ASN1_BADTAG", "another DER tag than expected"},
    {0xC0000001, "STATUS_UNSUCCESSFUL", "unspecified failure of the system"},
    {0xC0000005, "STATUS_ACCESS_VIOLATION", "memory access violation"},
    {0xC0000022, "STATUS_ACCESS_DENIED", "access is denied"},
    {0xC0000034, "STATUS_OBJECT_NAME_NOT_FOUND", "no object of that name"},
};

constexpr entry_t errors[] = {
    {1, "ERROR_INVALID_FUNCTION", "not a function of the device"},
    {2, "ERROR_FILE_NOT_FOUND", "not found"},
    {3, "ERROR_PATH_NOT_FOUND", "the folder is not found"},
    {4, "ERROR_TOO_MANY_OPEN_FILES", "too many open files"},
    {5, "ERROR_ACCESS_DENIED", "access is denied"},
    {6, "ERROR_INVALID_HANDLE", "the handle is not valid"},
    {8, "ERROR_NOT_ENOUGH_MEMORY", "not enough memory"},
    {11, "ERROR_BAD_FORMAT", "wrong format"},
    {13, "ERROR_INVALID_DATA", "the data are not valid"},
    {14, "ERROR_OUTOFMEMORY", "out of memory"},
    {15, "ERROR_INVALID_DRIVE", "no such drive"},
    {17, "ERROR_NOT_SAME_DEVICE", "on another drive"},
    {18, "ERROR_NO_MORE_FILES", "no more files"},
    {19, "ERROR_WRITE_PROTECT", "write-protected"},
    {21, "ERROR_NOT_READY", "the device is not ready"},
    {32, "ERROR_SHARING_VIOLATION", "another process has the file open"},
    {33, "ERROR_LOCK_VIOLATION", "another process has locked a part of the file"},
    {38, "ERROR_HANDLE_EOF", "end of the file"},
    {50, "ERROR_NOT_SUPPORTED", "not supported"},
    {53, "ERROR_BAD_NETPATH", "the network path is not found"},
    {64, "ERROR_NETNAME_DELETED", "the network name is gone"},
    {67, "ERROR_BAD_NET_NAME", "no such network name"},
    {80, "ERROR_FILE_EXISTS", "the file exists"},
    {82, "ERROR_CANNOT_MAKE", "can't be made"},
    {87, "ERROR_INVALID_PARAMETER", "an argument is not valid"},
    {109, "ERROR_BROKEN_PIPE", "the pipe has ended"},
    {110, "ERROR_OPEN_FAILED", "can't be opened"},
    {111, "ERROR_BUFFER_OVERFLOW", "the name is too long"},
    {112, "ERROR_DISK_FULL", "the disk is full"},
    {120, "ERROR_CALL_NOT_IMPLEMENTED", "the system has no such function"},
    {122, "ERROR_INSUFFICIENT_BUFFER", "the buffer is too small"},
    {123, "ERROR_INVALID_NAME", "the name is not valid"},
    {126, "ERROR_MOD_NOT_FOUND", "the library is not found"},
    {127, "ERROR_PROC_NOT_FOUND", "the library has no such function"},
    {145, "ERROR_DIR_NOT_EMPTY", "the folder is not empty"},
    {161, "ERROR_BAD_PATHNAME", "the path is not valid"},
    {170, "ERROR_BUSY", "in use"},
    {183, "ERROR_ALREADY_EXISTS", "exists already"},
    {193, "ERROR_BAD_EXE_FORMAT", "not a program or library"},
    {203, "ERROR_ENVVAR_NOT_FOUND", "no such environment variable"},
    {206, "ERROR_FILENAME_EXCED_RANGE", "the file name is too long"},
    {234, "ERROR_MORE_DATA", "there are more data"},
    {258, "WAIT_TIMEOUT", "the wait ran out"},
    {259, "ERROR_NO_MORE_ITEMS", "no more items"},
    {267, "ERROR_DIRECTORY", "not a folder"},
    {288, "ERROR_NOT_OWNER", "the mutex is not the caller's"},
    {298, "ERROR_TOO_MANY_POSTS", "the semaphore is at its limit"},
    {317, "ERROR_MR_MID_NOT_FOUND", "the system has no text for the number"},
    {487, "ERROR_INVALID_ADDRESS", "no such address"},
    {534, "ERROR_ARITHMETIC_OVERFLOW", "the result does not fit"},
    {995, "ERROR_OPERATION_ABORTED", "aborted"},
    {998, "ERROR_NOACCESS", "no access to the memory"},
    {1004, "ERROR_INVALID_FLAGS", "the flags are not valid"},
    {1006, "ERROR_FILE_INVALID", "the file is empty or was changed by another"},
    {1008, "ERROR_NO_TOKEN", "the thread has no token"},
    {1009, "ERROR_BADDB", "the registry is damaged"},
    {1010, "ERROR_BADKEY", "the registry key is not valid"},
    {1011, "ERROR_CANTOPEN", "the registry key can't be opened"},
    {1012, "ERROR_CANTREAD", "the registry key can't be read"},
    {1013, "ERROR_CANTWRITE", "the registry key can't be written"},
    {1018, "ERROR_KEY_DELETED", "the registry key has been deleted"},
    {1021, "ERROR_CHILD_MUST_BE_VOLATILE", "only a volatile key may stand here"},
    {1114, "ERROR_DLL_INIT_FAILED", "the library failed to start"},
    {1155, "ERROR_NO_ASSOCIATION", "no program for this kind of file"},
    {1157, "ERROR_DLL_NOT_FOUND", "a library that it needs is not found"},
    {1168, "ERROR_NOT_FOUND", "not found"},
    {1223, "ERROR_CANCELLED", "cancelled by the user"},
    {1224, "ERROR_USER_MAPPED_FILE", "the file is mapped"},
    {1300, "ERROR_NOT_ALL_ASSIGNED", "not all privileges were given"},
    {1307, "ERROR_INVALID_OWNER", "may not be the owner"},
    {1308, "ERROR_INVALID_PRIMARY_GROUP", "may not be the primary group"},
    {1309, "ERROR_NO_IMPERSONATION_TOKEN", "not an impersonation token"},
    {1313, "ERROR_NO_SUCH_PRIVILEGE", "no such privilege"},
    {1314, "ERROR_PRIVILEGE_NOT_HELD", "the privilege is missing"},
    {1332, "ERROR_NONE_MAPPED", "no account for the identifier"},
    {1336, "ERROR_INVALID_ACL", "the access list is not valid"},
    {1337, "ERROR_INVALID_SID", "the security identifier is not valid"},
    {1338, "ERROR_INVALID_SECURITY_DESCR", "the security descriptor is not valid"},
    {1346, "ERROR_BAD_IMPERSONATION_LEVEL", "the impersonation level does not do"},
    {1392, "ERROR_FILE_CORRUPT", "the file or folder is damaged"},
    {1400, "ERROR_INVALID_WINDOW_HANDLE", "no such window"},
    {1410, "ERROR_CLASS_ALREADY_EXISTS", "the class exists already"},
    {1411, "ERROR_CLASS_DOES_NOT_EXIST", "no such class"},
    {1444, "ERROR_INVALID_THREAD_ID", "no such thread"},
    {1450, "ERROR_NO_SYSTEM_RESOURCES", "the system is out of resources"},
    {1455, "ERROR_COMMITMENT_LIMIT", "no more memory can be committed"},
    {1460, "ERROR_TIMEOUT", "the time limit is over"},
    {1608, "ERROR_UNKNOWN_PROPERTY", "no such property"},
    {1812, "ERROR_RESOURCE_DATA_NOT_FOUND", "the file has no resources"},
    {1813, "ERROR_RESOURCE_TYPE_NOT_FOUND", "no resource of that type"},
    {1814, "ERROR_RESOURCE_NAME_NOT_FOUND", "no resource of that name"},
    {1815, "ERROR_RESOURCE_LANG_NOT_FOUND", "no resource in that language"},
    {1816, "ERROR_NOT_ENOUGH_QUOTA", "the quota does not do"},
};

template <size_t count> const entry_t* find(const entry_t (&table)[count], uint32_t code)
{
    const auto* entry =
        std::lower_bound(std::begin(table), std::end(table), code,
                         [](const entry_t& one, uint32_t wanted) { return one.code < wanted; });
    return entry != std::end(table) && entry->code == code ? entry : nullptr;
}

} // namespace

statusInfo_t describeStatus(int32_t status)
{
    const auto code = static_cast<uint32_t>(status);
    statusInfo_t info;
    char hex[11];
    std::snprintf(hex, sizeof hex, "0x%08X", code);
    info.hex = hex;

    const entry_t* entry = find(statuses, code);
    if (!entry && (code <= 0xFFFF || (code & 0xFFFF0000) == 0x80070000)) {
        entry = find(errors, code & 0xFFFF);
        if (!entry)
            info.name = "error " + std::to_string(code & 0xFFFF);
    }
    if (entry) {
        info.name = entry->name;
        info.text = entry->text;
    }
    return info;
}

} // namespace tools
