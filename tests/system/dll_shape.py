#!/usr/bin/env python3
"""dll_shape.py OBJDUMP DLL checks what the DLL exports and imports, how the system may load it, and that nothing in it
depends on when it was built. Exit status: 0 only if all is as meant."""
import re
import subprocess
import sys

EXPORTS = ["DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
SYSTEM_DLLS = {f"{name}.dll" for name in (
    "advapi32 kernel32 msvcrt ole32 oleaut32 shell32 shfolder shlwapi user32").split()}

dump = subprocess.run([sys.argv[1], "-p", sys.argv[2]], check=True, text=True, stdout=subprocess.PIPE).stdout
exports = re.findall(r"^\t\[ *\d+\] .*?(\S+)$", dump.split("[Ordinal/Name Pointer] Table")[1], re.MULTILINE)
imports = {name.lower() for name in re.findall(r"^\s+DLL Name: (\S+)$", dump, re.MULTILINE)}
sections = re.findall(r"^ +\d+ (\S+).*\n +(.*)$",
                      subprocess.run([sys.argv[1], "-h", sys.argv[2]], check=True, text=True,
                                     stdout=subprocess.PIPE).stdout, re.MULTILINE)
writable_code = [name for name, flags in sections if "CODE" in flags and "READONLY" not in flags]
missing = [flag for flag in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT") if flag not in dump]
stamp = re.search(r"^Time/Date\s+(.*)$", dump, re.MULTILINE)

if not sections or writable_code or missing:
    sys.exit(f"{len(sections)} sections, writable code in {writable_code}, without {missing}")
if not stamp or "1970" not in stamp[1]:
    sys.exit(f"the link's time is in it: {stamp and stamp[1]}")
if exports != EXPORTS or not imports or imports - SYSTEM_DLLS:
    sys.exit(f"exports {exports}, imports {sorted(imports)}")
