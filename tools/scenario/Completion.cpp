// Copyright 2026 The libvelar Authors
// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "scenario/Help.h"

namespace velactl {

namespace {

// What stands behind an option with a value, or behind a verb, is told by _velactl_values: "file",
// "words" and these, or "text". What else may come by _velactl_names: each with its meaning.

constexpr const char* kBash = R"sh(# bash completion for velactl
_velactl() {
    local word=${COMP_WORDS[COMP_CWORD]} last=${COMP_WORDS[COMP_CWORD-1]} verb= values= begun= at
    for ((at = 1; at < COMP_CWORD; ++at)); do
        case ${COMP_WORDS[at]} in
        -*)
            if [[ ${COMP_WORDS[at+1]} == = ]]; then
                ((at += 2))
            elif [[ -n $(_velactl_values "${COMP_WORDS[at]}") ]]; then
                ((++at))
            fi
            ;;
        *)
            verb=${COMP_WORDS[at]}
            break
            ;;
        esac
    done
    # An = is a word of its own.
    if [[ $word == = ]]; then
        word=
    elif [[ $last == = ]]; then
        last=${COMP_WORDS[COMP_CWORD-2]}
    fi
    [[ $last != -* ]] || values=$(_velactl_values "$last")
    if [[ -z $values ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_velactl_names "$verb" | cut -d: -f1)" -- "$word")
        [[ -z $verb ]] || values=$(_velactl_values "$verb")
    fi
    case $values in
    file)
        compopt -o filenames
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word")
        ;;
    words*)
        [[ $word != *,* ]] || begun=${word%,*},
        mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(
            compgen -P "$begun" -W "${values#words}" -- "${word##*,}")
        ;;
    esac
}
)sh";

constexpr const char* kZsh = R"sh(#compdef velactl
_velactl() {
    local last=$words[CURRENT-1] verb= values= at
    local -a names
    for ((at = 2; at < CURRENT; ++at)); do
        case $words[at] in
        -*=*) ;;
        -*) [[ -z $(_velactl_values $words[at]) ]] || ((++at)) ;;
        *)
            verb=$words[at]
            break
            ;;
        esac
    done
    if [[ $words[CURRENT] == -*=* ]]; then
        last=${words[CURRENT]%%=*}
        compset -P '*='
    fi
    [[ $last != -* ]] || values=$(_velactl_values $last)
    if [[ -z $values ]]; then
        names=("${(@f)$(_velactl_names "$verb")}")
        _describe velactl names
        [[ -z $verb ]] || values=$(_velactl_values $verb)
    fi
    case $values in
    file) _files ;;
    words*)
        compset -P '*,'
        compadd -- ${=values#words}
        ;;
    text) _message value ;;
    esac
}
)sh";

constexpr const char* kBashEnd = "complete -F _velactl velactl\n";
constexpr const char* kZshEnd = "_velactl \"$@\"\n";

/** What a function of both shells prints when its argument is one of these. */
std::string caseOf(const std::string& names, const std::string& text) {
    return "    " + names + ")\n        cat <<'END'\n" + text + "END\n        ;;\n";
}

std::string function(const std::string& name, const std::string& cases) {
    return name + "() {\n    case $1 in\n" + cases + "    esac\n}\n";
}

std::string linesOf(const std::vector<Option>& options) {
    std::string text;
    for (const Option& option : options) {
        for (const std::string& name : {option.name, option.opposite}) {
            text += name.empty() ? "" : name + ':' + option.help + '\n';
        }
    }
    return text;
}

std::string linesOf(const Operations& verbs) {
    std::string text;
    for (const Operation& verb : verbs) {
        text += verb.name() + ':' + verb.help + '\n';
    }
    return text;
}

std::string valuesOf(const Option& option) {
    return option.choices.empty() ? option.value == "FILE" ? "file" : "text"
                                  : "words " + join(option.choices, " ");
}

/** Of the words behind a verb; empty: nothing that could be listed. */
std::string valuesOf(const Operation& verb) {
    const Names placeholders = verb.placeholders(kVerb);
    const Names choices = placeholders.empty() ? Names() : choicesIn(placeholders.front());
    return choices == Names{"FILE"} ? "file"
           : choices == Names{"VERB"}
               ? "words " + join(namesIn(operationsAt(kVerb), &Operation::name), " ")
               : "";
}

std::string tables() {
    const Operations verbs = operationsAt(kVerb);
    std::string names = caseOf("''", linesOf(verbs) + linesOf(optionsOf(kEveryVerb)));
    std::string values;
    for (const Operation& verb : verbs) {
        names += caseOf(verb.name(), linesOf(optionsOf(verb.options | kEveryVerb)));
        const std::string own = valuesOf(verb);
        values += own.empty() ? "" : caseOf(verb.name(), own + '\n');
    }
    for (const Option& option : optionsOf(~0U)) {
        values += option.value.empty() ? "" : caseOf(option.name, valuesOf(option) + '\n');
    }
    return function("_velactl_names", names) + function("_velactl_values", values);
}

}  // namespace

Names shellNames() {
    return {"bash", "zsh"};
}

std::string completionFor(const std::string& shell) {
    return shell == "zsh" ? kZsh + tables() + kZshEnd : kBash + tables() + kBashEnd;
}

}  // namespace velactl
