#!/usr/bin/env bash
# Fails when the shared object exports a name that is not on the list.
# Usage: check_exports.sh LIBRARY LIST [FALLBACK_LIST]
set -euo pipefail
lib=$1; list=$2; fallback=${3:-}
if [ ! -f "$list" ]; then list=$fallback; fi
have=$(nm -D --defined-only "$lib" | awk '$2 ~ /^[TtWiDdBbRrVv]$/ {print $3}' | sed 's/@.*//' | grep -v '^_' | sort -u)
want=$(sort -u "$list")
extra=$(comm -23 <(echo "$have") <(echo "$want"))
missing=$(comm -13 <(echo "$have") <(echo "$want") | wc -l)
echo "exported: $(echo "$have" | grep -c .) names; listed but not yet built: $missing"
if [ -n "$(echo "$extra" | tr -d '[:space:]')" ]; then
  echo "exported but not listed:"; echo "$extra"; exit 1
fi
# The tree's copy of the list must be the authoritative one.
if [ -n "$fallback" ] && [ -f "$2" ] && ! cmp -s <(sort -u "$2") <(sort -u "$fallback"); then
  echo "the tree's export list differs from $2"; exit 1
fi
soname=$(objdump -p "$lib" | awk '/SONAME/ {print $2}')
[ "$soname" = "libzvpjp8.so.6.1" ] || { echo "SONAME is $soname"; exit 1; }
echo "ok"
