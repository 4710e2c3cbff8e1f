# complete_in_bash.sh SCRIPT WORD...: prints what bash offers in place of the last word with the
# completions of SCRIPT.
. "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
[[ $(complete -p "$1") == *" -F "* ]] || exit 1
"_$1"
printf '%s\n' "${COMPREPLY[@]}"
