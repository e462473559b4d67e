#!/usr/bin/env bash
# The bash completion offers every command the tool lists in its help, and
# the actions of a command after it. Usage: completion.sh TARVOS COMPLETION_FILE
set -euo pipefail
tool=$1
# Stand-ins for the helpers of the bash-completion package.
_init_completion() { cur=${COMP_WORDS[COMP_CWORD]}; prev=${COMP_WORDS[COMP_CWORD-1]}; words=("${COMP_WORDS[@]}"); cword=$COMP_CWORD; }
_filedir() { COMPREPLY=(); }
# shellcheck disable=SC1090
source "$2"
complete_words() { COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMPREPLY=(); _tarvos; echo "${COMPREPLY[*]}" | tr ' ' '\n' | sort; }

listed=$("$tool" --help | sed -n '/^Subcommands:/,$p' | awk 'NR > 1 && NF {print $1}' | sort)
offered=$(complete_words tarvos "" | grep -v '^-')
if [ "$listed" != "$offered" ]; then
  echo "commands in the help: $listed"; echo "commands completed: $offered"; exit 1
fi
[ "$(complete_words tarvos dict "" | tr '\n' ' ')" = "delete export import scan " ]
[ "$(complete_words tarvos check --format "" | tr '\n' ' ')" = "json xml " ]
echo "completion offers the $(echo "$listed" | wc -l) commands of the help"
