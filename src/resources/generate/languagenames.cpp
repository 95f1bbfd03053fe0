// Prints languagenames.inc from the platform's own national language support: every language
// identifier, specific or neutral, that the system names. Run it on a current system, and keep its
// output:
//     cmake --build build/release --target vl_languagenames
//     scripts/in-prefix.sh build/release/bin/vl_languagenames.exe >src/resources/languagenames.inc

#include <windows.h>
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cwchar>

int main()
{
    _setmode(_fileno(stdout), _O_BINARY);
    for (unsigned language = 1; language <= 0xFFFF; ++language) {
        wchar_t name[LOCALE_NAME_MAX_LENGTH] = {};
        // Defaults stand for whatever the user has chosen; the invariant language has no name.
        const bool isDefault = PRIMARYLANGID(language) == LANG_NEUTRAL;
        if (!isDefault &&
            LCIDToLocaleName(language, name, LOCALE_NAME_MAX_LENGTH, LOCALE_ALLOW_NEUTRAL_NAMES) &&
            name[0])
            std::printf("{0x%04X, L\"%ls\"},\n", language, name);
    }
    return 0;
}
