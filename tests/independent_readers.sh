#!/usr/bin/env bash
# Runs a part of independent_readers.py, or ends with status 77, which counts as skipped.
#   independent_readers.sh PART PROGRAM SOURCE-FOLDER
if ! command -v python3 > /dev/null; then
  echo "skipped: python3 is not installed"
  exit 77
fi
exec python3 "$(dirname "$0")/independent_readers.py" "$@"
