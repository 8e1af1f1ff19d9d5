#!/bin/sh
# The tour of VantoDesk on a copy of its installation, checked from outside:
#   tour_test.sh <installation> <scratch folder>
# The copy runs the tour on a virtual display; then the databases (sqlite3),
# the backup (bytes and times), dsn.ini, the user's files and the file list
# (no temporary files) are compared with what the tour should have done.
# Exit 77 (skipped) without xvfb-run or sqlite3.
set -eu
command -v xvfb-run >/dev/null 2>&1 || { echo "xvfb-run is not installed: skipped" >&2; exit 77; }
command -v sqlite3 >/dev/null 2>&1 || { echo "sqlite3 is not installed: skipped" >&2; exit 77; }
src=$1
work=$2
rm -rf "$work"
mkdir -p "$work"
inst=$work/VantoDesk
fail() { echo "FAIL: $*" >&2; exit 1; }

# A fresh copy: the installation without the traces of earlier runs.
cp -a "$src" "$inst"
rm -rf "$inst/Sicherung"/* "$inst/USR/Std/Msg.ini"
files() { (cd "$inst" && find . -type f | LC_ALL=C sort); }
dump() { sqlite3 "$inst/Daten/$1/Desk.db" .dump; }
files >"$work/files.before"
dump M1 >"$work/m1.before"
dump M2 >"$work/m2.before"
cp "$inst/INI/dsn.ini" "$work/dsn.before"
original=$(cksum <"$src/Daten/M1/Desk.db")

# The tour, started from elsewhere: the program finds its installation.
cd "$work"
xvfb-run -a -s "-screen 0 1024x768x24" "$inst/VantoDesk" --tour "$work/shots" >"$work/tour.out" 2>&1 ||
    { cat "$work/tour.out"; fail "the tour ended with $?"; }
cat "$work/tour.out"
grep -q "tour: 10 steps, 0 failed" "$work/tour.out" || fail "not every step did what it should"
[ "$(ls "$work/shots"/*.png | wc -l)" -ge 10 ] || fail "a picture per step"

# The databases: of client 1 exactly the first customer changed (credit
# limit, last contact, discount as the tour says it typed them); client 2
# is as it was.
q() { sqlite3 "$inst/Daten/M1/Desk.db" "$1"; }
dump M1 >"$work/m1.after"
changed=$(diff "$work/m1.before" "$work/m1.after" | grep -c '^>' || true)
[ "$changed" = 1 ] || { diff "$work/m1.before" "$work/m1.after" || true; fail "client 1: $changed rows changed, not 1"; }
diff "$work/m1.before" "$work/m1.after" | grep -q "^> INSERT INTO customer VALUES(1001," || fail "not customer 1001"
typed=$(sed -n 's/.*| typed \([0-9.,]*\) and .*/\1/p' "$work/tour.out" | tr ',' '.')
[ -n "$typed" ] || fail "the tour names no credit limit"
[ "$(q "SELECT credit_limit = $typed FROM customer WHERE nr = 1001")" = 1 ] || fail "credit limit is not $typed"
q "SELECT last_contact FROM customer WHERE nr = 1001" | grep -Eq '^2026-03-1[67]' || fail "last contact"
discount=$(sed -n 's/.*| typed \([0-9,.]*\); asked .*/\1/p' "$work/tour.out" | tr ',' '.')
[ "$(q "SELECT discount = $discount FROM customer WHERE nr = 1001")" = 1 ] || fail "discount is not $discount"
dump M2 | cmp -s - "$work/m2.before" || fail "client 2 changed"
[ "$(cksum <"$src/Daten/M1/Desk.db")" = "$original" ] || fail "the copy wrote into the original installation"

# The backup: the data directory of client 1, the same bytes and times.
[ -d "$inst/Sicherung/M1" ] || fail "no backup Sicherung/M1"
(cd "$inst/Daten/M1" && find . -type f) | while read -r f; do
    cmp -s "$inst/Daten/M1/$f" "$inst/Sicherung/M1/$f" || fail "backup of $f differs"
    [ "$(stat -c %Y "$inst/Daten/M1/$f")" = "$(stat -c %Y "$inst/Sicherung/M1/$f")" ] || fail "time of $f"
done
[ "$(cd "$inst/Daten/M1" && find . -type f | wc -l)" = "$(cd "$inst/Sicherung/M1" && find . -type f | wc -l)" ] ||
    fail "the backup holds other files"

# dsn.ini keeps its clients and relative paths; the user's file names the
# default client; nothing else appeared but the backup.
cmp -s "$work/dsn.before" "$inst/INI/dsn.ini" || fail "dsn.ini changed"
if grep -q ':\\\|^DtaPth=/' "$inst/INI/dsn.ini"; then fail "an absolute path in dsn.ini"; fi
grep -q '^Default=Beispiel GmbH' "$inst/USR/Std/User.ini" || fail "User.ini lost the default client"
files >"$work/files.after"
extra=$(comm -13 "$work/files.before" "$work/files.after" | grep -v '^./Sicherung/M1/Desk.db$' || true)
gone=$(comm -23 "$work/files.before" "$work/files.after" || true)
[ -z "$extra" ] || fail "files left behind: $extra"
[ -z "$gone" ] || fail "files gone: $gone"
echo "desk tour: databases, backup, dsn.ini, user's files and file list as expected"
