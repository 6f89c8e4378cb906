#!/bin/sh
# Mutation check of the service's sources: see scripts/mutate.py for what it does.
#   scripts/mutate.sh [--seed N] [--count N | --all] [--skip K] [--files REGEX] [--changed-since REV]
#                     [--results CSV] [--list] [--stats] [--plain] [--lock FILE] [--summary] [--self-test]
# e.g. scripts/mutate.sh --seed 7 --count 20 --files 'src/oled/'
exec python3 "$(dirname "$0")/mutate.py" "$@"
