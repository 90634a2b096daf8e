// The scripts hand over the words typed so far and show the answer; all else is in completion.cpp.

#include "commands/completion_scripts.h"

#include <map>

namespace orvio::program {
namespace {

// Bash takes words apart at colons and signs of equality; they are put together again here, and what readline does not
// replace is left out of the answers.
constexpr char kBash[] = R"(# bash completion for orv

_orv() {
  local rest=${COMP_LINE:0:COMP_POINT} words=() word part i line files= before
  rest=${rest#*"${COMP_WORDS[0]}"}
  for ((i = 1; i <= COMP_CWORD; ++i)); do
    part=${COMP_WORDS[i]}
    word=${rest#"${rest%%[![:space:]]*}"}
    [[ $word == "$part"* ]] || part=$word
    if [[ ${#words[@]} -eq 0 || $rest == [[:space:]]* ]]; then
      words+=("$part")
    else
      words[${#words[@]}-1]+=$part
    fi
    rest=${word#"$part"}
  done
  local quote= current=${words[${#words[@]}-1]}
  [[ $current == [\'\"]* ]] && quote=${current:0:1}
  for i in "${!words[@]}"; do
    word=${words[i]}
    word=${word//[\\\'\"]/}
    words[i]=${word/#\~\//$HOME/}
  done
  current=${words[${#words[@]}-1]}
  before=
  [[ -z $quote && $current == *[:=]* ]] && before=${current%"${current##*[:=]}"}
  COMPREPLY=()
  while IFS= read -r line; do
    if [[ $line == :files ]]; then files=1; continue; fi
    line=${line%%$'\t'*}
    line=${line#"$before"}
    [[ -z $quote && $line == *[!A-Za-z0-9_.,:=/+@%-]* ]] && printf -v line %q "$line"
    COMPREPLY+=("$line")
  done < <("${COMP_WORDS[0]}" __complete -- "${words[@]}" 2>/dev/null)
  if [[ -n $files ]]; then compopt -o default 2>/dev/null; fi
  if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == */ ]]; then compopt -o nospace 2>/dev/null; fi
  return 0
}

complete -F _orv orv
)";

constexpr char kZsh[] = R"(#compdef orv

_orv() {
  local line value
  local -a typed words_ready shown open
  typed=("${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}")
  while IFS= read -r line; do
    if [[ $line == :files ]]; then _files; continue; fi
    value=${line%%$'\t'*}
    if [[ $value == */ ]]; then
      open+=("$value")
    else
      words_ready+=("$value")
      shown+=("${line/$'\t'/  -- }")
    fi
  done < <("${(Q)words[1]}" __complete -- "${typed[@]}" 2>/dev/null)
  (( $#words_ready )) && compadd -U -l -d shown -a words_ready
  (( $#open )) && compadd -U -S '' -a open
  return 0
}

if [[ ${funcstack[1]} == _orv ]]; then _orv "$@"; else compdef _orv orv; fi
)";

constexpr char kFish[] = R"(# fish completion for orv

function __orv_complete
    set -l typed (commandline -opc) (commandline -ct)
    set -l program $typed[1]
    set -e typed[1]
    for line in ($program __complete -- $typed 2>/dev/null)
        if test "$line" = :files
            __fish_complete_path (commandline -ct)
        else
            echo $line
        end
    end
end

complete -c orv -f -a '(__orv_complete)'
)";

const std::map<std::string, const char*> kScripts = {{"bash", kBash}, {"zsh", kZsh}, {"fish", kFish}};

}  // namespace

const char* CompletionScript(const std::string& shell) { return kScripts.at(shell); }

}  // namespace orvio::program
