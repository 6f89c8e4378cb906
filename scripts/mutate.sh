#!/bin/sh
# Mutation check of the service's sources: see scripts/mutate.py for what it does.
#   scripts/mutate.sh [--seed N] [--count N] [--skip K] [--files REGEX] [--list] [--lock FILE] [--summary]
# e.g. scripts/mutate.sh --seed 7 --count 20 --files 'src/oled/'
exec python3 "$(dirname "$0")/mutate.py" "$@"
