#!/usr/bin/env python3
"""dll_shape.py OBJDUMP DLL checks what the DLL exports and imports. Exit status: 0 only if all is as meant."""
import re
import subprocess
import sys

EXPORTS = ["DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
SYSTEM_DLLS = {f"{name}.dll" for name in (
    "advapi32 kernel32 msvcrt ole32 oleaut32 shell32 shfolder shlwapi user32").split()}

dump = subprocess.run([sys.argv[1], "-p", sys.argv[2]], check=True, text=True, stdout=subprocess.PIPE).stdout
exports = re.findall(r"^\t\[ *\d+\] (\S+)$", dump.split("[Ordinal/Name Pointer] Table")[1], re.MULTILINE)
imports = {name.lower() for name in re.findall(r"^\s+DLL Name: (\S+)$", dump, re.MULTILINE)}

if exports != EXPORTS or not imports or imports - SYSTEM_DLLS:
    sys.exit(f"exports {exports}, imports {sorted(imports)}")
