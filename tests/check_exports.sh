#!/bin/sh
# The module exports one symbol, and needs no library of ours but the host's.
#   check_exports.sh MODULE
set -eu
exported=$(nm -D --defined-only "$1" | awk '{ print $3 }')
if [ "$exported" != GetCFProcCustom ]; then
  echo "The module exports:" $exported
  exit 1
fi
needed=$(readelf -d "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' |
  grep -vE '^(libstdc\+\+|libm|libgcc_s|libc|libasan|libubsan|ld-linux.*|libhierfithost)\.so' || true)
if [ -n "$needed" ]; then
  echo "The module needs:" $needed
  exit 1
fi
