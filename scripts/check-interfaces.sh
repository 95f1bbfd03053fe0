#!/bin/sh
# check-interfaces.sh checks what integrators get: header and example host compile as C++17 for both compilers,
# the host also by the command in its comment, the IDL compiles, and header and IDL agree. Part of "make lint".
set -u
root=$(cd "$(dirname "$0")/.." && pwd)
work="$root/build/interfaces"
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
status=0

x86_64-w64-mingw32-widl -I /usr/include/wine/wine/windows --win64 -h -H VLONLINEIDSLib_idl.h \
    -p -P proxies.c -t -T VLONLINEIDSLib.tlb -o unused "$root/include/VLONLINEIDSLib.idl" || exit 1
# A null entry is a call that no proxy can pass on.
if sed -n '/CINTERFACE_PROXY_VTABLE/,/^};/p' proxies.c | grep '^ *0,'; then
    echo "check-interfaces: a proxy table has null entries" >&2
    status=1
fi

warnings='-std=c++17 -fsyntax-only -Wall -Wextra -Wpedantic -Werror'
gnu() {
    # shellcheck disable=SC2086 # a list of words is wanted
    x86_64-w64-mingw32-g++-posix $warnings -I "$root/include" -I . "$@"
}
# The platform's headers of Wine stand in for the other compiler's; one of their functions is a builtin there.
msvc() {
    # shellcheck disable=SC2086
    clang++-14 --target=x86_64-pc-windows-msvc -fms-compatibility -fms-extensions $warnings \
        -Wno-language-extension-token -DWINE_UNICODE_NATIVE -D_InterlockedCompareExchange128=unused -isystem /usr/include/wine/wine/windows \
        -isystem /usr/include/wine/wine/msvcrt -I "$root/include" -I . "$@"
}
for compiler in gnu msvc; do
    for source in examples/host.cpp tests/interfaces/agreement.cpp; do
        "$compiler" "$root/$source" || {
            echo "check-interfaces: $source does not compile ($compiler)" >&2
            status=1
        }
    done
done

# The command in the comment of the example is one that works.
command=$(sed -n 's|^// *\(x86_64-.*\)|\1|p' "$root/examples/host.cpp")
(cd "$root" && ${command:-false} -o "$work/host.exe") || {
    echo "check-interfaces: the command in examples/host.cpp fails" >&2
    status=1
}

# The table of each interface: its base, and its operations in their order with the arguments.
tables() {
    echo "#include \"$1\"" >tables.cpp
    msvc tables.cpp -Xclang -ast-dump -Xclang -ast-dump-filter=IVLK |
        sed -n -E -e "s/^CXXRecordDecl.* struct (IVLK\w+) definition/\1/p" \
            -e "s/^\|-public '(VLONLINEIDSLib::)?(\w+)'.*/  \2/p" \
            -e "s/^\|-CXXMethodDecl.* (\w+ '[^']*')(:'[^']*')? virtual pure/  \1/p" \
            -e "s/^\| .-ParmVarDecl.* (\w+) '([^']*)'.*/    \1 \2/p" |
        sed -e 's/const BYTE/const unsigned char/g' | awk '/^IVLK/ { name = $1 } { print name, $0 }' | LC_ALL=C sort -s -k1,1
}
tables vlonlineids.h >header.txt
tables VLONLINEIDSLib_idl.h >idl.txt
if [ "$(grep -c "'HRESULT" header.txt)" -eq 0 ] || ! diff header.txt idl.txt; then
    echo "check-interfaces: header and IDL differ (build/interfaces/header.txt, idl.txt)" >&2
    status=1
fi
exit $status
