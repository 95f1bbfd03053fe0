#!/usr/bin/env python3
"""emptydll.py OBJDUMP DLL OUT writes the C source of a DLL that does nothing and imports what another one does."""
import re
import subprocess
import sys


def imports(objdump, dll):
    listing = subprocess.run([objdump, "-p", dll], check=True, text=True, stdout=subprocess.PIPE).stdout
    tables = listing[listing.index("The Import Tables"):listing.index("[Ordinal/Name Pointer]")]
    return sorted(set(re.findall(r"^\t[0-9a-f]+\t *\d+  (\S+)$", tables, re.MULTILINE)))


def main(objdump, dll, out):
    names = imports(objdump, dll)
    with open(out, "w", encoding="ascii") as file:
        file.write("#include <windows.h>\n")
        for name in names:
            file.write(f'extern void* import_{name} __asm__("__imp_{name}");\n')
        file.write("__declspec(dllexport) void* imported(int i)\n{\n    switch (i) {\n")
        for i, name in enumerate(names):
            file.write(f"    case {i}: return import_{name};\n")
        file.write("    default: return 0;\n    }\n}\n"
                   "BOOL WINAPI DllMain(HINSTANCE a, DWORD b, void* c)\n{\n"
                   "    (void)a, (void)b, (void)c;\n    return TRUE;\n}\n")


if __name__ == "__main__":
    main(*sys.argv[1:])
