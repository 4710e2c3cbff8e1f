# complete_in_zsh.zsh FOLDER LINES OUT: writes to the file OUT what zsh offers at the end of each line of
# the file LINES, followed by a line "end", with the completions in FOLDER. This is done by a second zsh
# with its own terminal.
if [[ -z $COMPLETE_IN_TERMINAL ]]; then
  zmodload zsh/zpty || exit 1
  export COMPLETE_IN_TERMINAL=1 TERM=dumb
  zpty asked zsh -f -i
  zpty -w asked "source ${(q)0} ${(q)1} ${(q)2} ${(q)3}"
  zpty -n -w asked $'\x18'
  zpty -r asked said '*all asked*'
  exit
fi

PS1=
fpath=($1 $fpath)
autoload -Uz compinit
compinit -u -D
lines=("${(@f)$(<$2)}")
out=$3
: > $out
# The results that the completion functions add are recorded; calls with -O, -A or -D add none.
compadd() {
  if [[ ${@[1,(i)(-|--)]} != *-[OAD]\ * ]]; then
    local -a found
    builtin compadd -O found "$@"
    (( $#found )) && print -rl -- $found >> $out
  fi
  builtin compadd "$@"
}
ask() {
  local line
  for line in $lines; do
    BUFFER=$line
    CURSOR=$#BUFFER
    zle complete-word
    print end >> $out
  done
  print 'all asked'
}
zle -N ask
bindkey '^X' ask
