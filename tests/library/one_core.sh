#!/bin/sh
# one_core.sh PROGRAM: fails unless the program contains each table once and takes nothing from the shared library.
status=0
for table in pgn_plans field_plans format_plans enum_sets stream_key_table; do
    count=$(nm "$1" | grep -c "[0-9]${table}E\?\(\.lto_priv\.[0-9]*\)\?$")
    [ "$count" -eq 1 ] || { echo "$table: $count of them"; status=1; }
done
ldd "$1" | grep libpgn_vistel && status=1
exit $status
