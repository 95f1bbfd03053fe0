#!/usr/bin/env python3
"""dll_shape.py OBJDUMP DLL checks what the DLL exports, imports and carries. Exit status: 0 only if all is as meant."""
import re
import subprocess
import sys

EXPORTS = ["DllGetClassObject", "DllRegisterServer", "DllUnregisterServer"]
SYSTEM_DLLS = {f"{name}.dll" for name in (
    "advapi32 kernel32 msvcrt ole32 oleaut32 shell32 shfolder shlwapi user32").split()}
RESOURCE_TYPES = {2, 3, 14, 16, 23, "MUI"}  # what is text lies in the language files

dump = subprocess.run([sys.argv[1], "-p", sys.argv[2]], check=True, text=True, stdout=subprocess.PIPE).stdout
exports = re.findall(r"^\t\[ *\d+\] (\S+)$", dump.split("[Ordinal/Name Pointer] Table")[1], re.MULTILINE)
imports = {name.lower() for name in re.findall(r"^\s+DLL Name: (\S+)$", dump, re.MULTILINE)}
# Of the tree of types, names and languages the first level is wanted, which is indented least.
types = {int(number, 16) if number else name for number, name in re.findall(
    r"^[0-9a-f]+   Entry: (?:ID: 0x([0-9a-f]+)|name: \[val: [0-9a-f]+ len \d+\]: (\w+)),", dump, re.MULTILINE)}

complaints = []
if exports != EXPORTS:
    complaints.append(f"exports {exports}")
if not imports or imports - SYSTEM_DLLS:
    complaints.append(f"imports {sorted(imports)}")
if types != RESOURCE_TYPES:
    complaints.append(f"carries resources of the types {types}")
print("\n".join(complaints) or "as meant")
sys.exit(1 if complaints else 0)
