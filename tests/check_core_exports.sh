#!/usr/bin/env bash
# The core library carries its SONAME and exactly its services; the
# primitives library needs it.
set -euo pipefail
core=$1; lib=$2
soname=$(objdump -p "$core" | awk '/SONAME/ {print $2}')
[ "$soname" = "libzvpcore.so.6.1" ] || { echo "core SONAME is $soname"; exit 1; }
have=$(nm -D --defined-only "$core" | awk '$2 ~ /^[TtWi]$/ {print $3}' | grep -v '^_' | sort -u | tr '\n' ' ')
want="ownGetFeature ownGetNumThreads zvpFree zvpGetMaxCacheSizeB zvpGetNumThreads zvpMalloc zvpSetNumThreads "
[ "$have" = "$want" ] || { echo "core exports: $have"; exit 1; }
objdump -p "$lib" | grep -q 'NEEDED.*libzvpcore.so.6.1' || { echo "$lib does not need libzvpcore.so.6.1"; exit 1; }
echo "ok"
