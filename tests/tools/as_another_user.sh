#!/bin/sh
# as_another_user.sh DATA PROGRAM...: runs tests as a user without privileges, with the signal that
# ends sessions ignored, as under nohup. DATA is a file that they read.
set -eu
skip() {
  echo "skipped: $1"
  exit 0
}
as_nobody() { setpriv --reuid=65534 --regid=65534 --clear-groups "$@"; }

[ "$(id -u)" = 0 ] || skip "only root can become another user"
command -v setpriv >/dev/null || skip "setpriv is not installed"
data=$1
shift
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
chmod 755 "$folder"
mkdir -m 777 "$folder/tmp" "$folder/gcov"
as_nobody test -r "$data" || skip "other users may not read the sources"
for program; do
  as_nobody test -x "$program" || skip "other users may not run what is built here"
done
cd /
failures=0
for program; do
  # nohup itself writes to standard error only.
  HOME=$folder TMPDIR=$folder/tmp GCOV_PREFIX=$folder/gcov nohup \
    setpriv --reuid=65534 --regid=65534 --clear-groups "$program" </dev/null 2>&1 ||
    failures=$((failures + 1))
done
exit $failures
