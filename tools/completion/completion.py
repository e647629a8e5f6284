#!/usr/bin/env python3
"""completion.py FOLDER VISTEL [COMMAND=PROGRAM ...]: makes completions for bash, zsh and fish of the options that the
programs themselves tell (--option-table). A COMMAND is one whose options another program knows."""

import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path

NOTE = "# Completion of vistel, made of the options that it has.\n"


@dataclass
class Option:
    names: list[str]  # none for a word that stands by itself
    value: str  # "" for a flag
    is_many: bool
    about: str
    choices: list[str]

    @property
    def is_file(self):
        return self.value == "FILE"


@dataclass
class Command:
    about: str = ""
    options: list[Option] = field(default_factory=list)

    def words(self):
        return [option for option in self.options if not option.names]

    def named(self):
        return [option for option in self.options if option.names]


def read_table(program):
    printed = subprocess.run([program, "--option-table"], capture_output=True, encoding="utf-8", check=True).stdout
    commands = {}
    for row in printed.splitlines():
        kind, command, *cells = row.split("\t")
        if kind == "command":
            commands[command] = Command(cells[0])
        else:
            names, value, many, about, *choices = cells
            commands[command].options.append(Option(names.split(), value, many == "many", about, choices))
    return commands


def quoted(text):
    """For bash and zsh."""
    return "'" + text.replace("'", "'\\''") + "'"


# ---- bash ----

BASH = r"""# shellcheck shell=bash
_vistel() {
    local i glued=''
    local -a words=()
    # What bash parts at = and : is one word.
    for ((i = 0; i <= COMP_CWORD; i++)); do
        if [[ -n $glued || ${COMP_WORDS[i]} == [=:]* ]]; then
            words[-1]+=${COMP_WORDS[i]}
        else
            words+=("${COMP_WORDS[i]}")
        fi
        glued=
        if [[ ${COMP_WORDS[i]} == *[=:] ]]; then glued=1; fi
    done
    local typed=${words[-1]} option=${words[-2]} command=''
    if ((${#words[@]} > 2)); then command=${words[1]}; fi
    if [[ $typed == --*=* ]]; then
        option=${typed%%=*}
        typed=${typed#*=}
    fi
    COMPREPLY=()
    local choices kind
    case "$command $option" in
@VALUES@
    *)
        case $command in
@WORDS@
        *) return ;;
        esac
        if [[ $typed == -* ]]; then kind=options; fi
        ;;
    esac
    case $kind in
    files)
        compopt -o default
        return
        ;;
    options)
        case $command in
@OPTIONS@
        esac
        ;;
    none) return ;;
    esac

    local quote='' before=''
    if [[ $typed == [\'\"]* ]]; then
        quote=${typed:0:1}
        typed=${typed:1}
    else
        typed=${typed//\\/}
        before=${typed%"${typed##*[=:]}"} # stands there already
    fi
    local choice last=''
    while read -r choice; do
        # A quantity first, then its units.
        if [[ $kind == pairs && $typed != *=* ]]; then choice=${choice%%=*}=; fi
        if [[ $choice != "$typed"* || $choice == "$last" ]]; then continue; fi
        last=$choice
        choice=${choice#"$before"}
        if [[ -z $quote ]]; then
            printf -v choice %q "$choice"
        fi
        COMPREPLY+=("$choice")
    done <<<"$choices"
    if [[ ${COMPREPLY[0]} == *= ]]; then compopt -o nospace; fi
}
complete -F _vistel vistel
"""


def kind_of(option):
    if option.is_file:
        return "files"
    if not option.choices:
        return "none"
    return "pairs" if all("=" in choice for choice in option.choices) else "list"


def bash_branch(indent, patterns, kind, choices):
    lines = indent + f" | \\\n{indent}".join(map(quoted, patterns))
    chosen = f"choices={quoted(chr(10).join(choices))} " if choices else ""
    return f"{lines}) kind={kind} {chosen};;"


def bash(commands):
    values, words, options = {}, [], []
    for name, command in commands.items():
        for option in command.named():
            if option.value:
                key = (kind_of(option), tuple(option.choices))
                values.setdefault(key, []).extend(f"{name} {spelling}" for spelling in option.names)
        kind, choices = "none", ()
        for word in command.words():
            if kind_of(word) != "none":
                kind, choices = kind_of(word), word.choices
        if not name:
            kind, choices = "list", [command for command in commands if command]
        words.append(bash_branch("        ", [name], kind, choices))
        spellings = [spelling for option in command.named() for spelling in option.names]
        options.append(bash_branch("        ", [name], "options", spellings))
    branches = [bash_branch("    ", patterns, *key) for key, patterns in values.items()]
    return NOTE + (BASH.replace("@VALUES@", "\n".join(branches)).replace("@WORDS@", "\n".join(words))
                   .replace("@OPTIONS@", "\n".join(options)))


# ---- zsh ----

ZSH = r"""
# A quantity first, then its units: OPTION-OF-COMPADD ... -- PAIR ...
_vistel_pairs() {
    local -a how=("${@[1,${@[(i)--]}-1]}") pairs=("${@[${@[(i)--]}+1,-1]}")
    local key=${${(Q)PREFIX}%%=*}
    if compset -P '*='; then
        compadd $how -- ${${(M)pairs:#${(b)key}=*}#*=}
    else
        compadd $how -S '' -- ${(u)${pairs/=*/=}}
    fi
}

_vistel() {
    if ((CURRENT == 2)) && [[ $PREFIX != -* ]]; then
        local -a commands=(
@COMMANDS@
        )
        _describe command commands
        return
    fi
    local command=
    if ((CURRENT > 2)); then
        command=$words[2]
        shift words
        ((CURRENT--))
    fi
    case $command in
@BRANCHES@
    esac
}

_vistel "$@"
"""


def zsh_escaped(text, marks):
    return "".join("\\" + c if c in marks else c for c in text)


def zsh_value(option, functions):
    if option.is_file:
        action = "_files"
    elif option.choices:
        choices = tuple(option.choices)
        action = functions.setdefault(choices, f"_vistel_choices_{len(functions) + 1}")
    else:
        action = " "
    return ":" + zsh_escaped(option.value, ":") + ":" + action


def zsh_specs(option, functions):
    if not option.names:
        yield ("*" if option.is_many else "") + zsh_value(option, functions)
        return
    about = "[" + zsh_escaped(option.about, "[]:\\") + "]"
    for name in option.names:
        others = "*" if option.is_many else "(" + " ".join(option.names) + ")"
        sign = ("=" if name.startswith("--") else "+") if option.value else ""
        yield others + name + sign + about + (zsh_value(option, functions) if option.value else "")


def zsh(commands):
    functions, branches = {}, []
    for name, command in commands.items():
        specs = [quoted(spec) for option in command.options for spec in zsh_specs(option, functions)]
        branches.append(f"    {quoted(name)}) _arguments " + " \\\n        ".join(specs) + " ;;")
    text = "#compdef vistel\n" + NOTE
    for choices, function in functions.items():
        is_pairs = all("=" in choice for choice in choices)
        text += f'\n{function}() {{\n    {"_vistel_pairs" if is_pairs else "compadd"} "$@" -- '
        text += " ".join(map(quoted, choices)) + "\n}\n"
    rows = "\n".join("        " + quoted(name + ":" + zsh_escaped(command.about, ":\\"))
                     for name, command in commands.items() if name)
    return text + ZSH.replace("@COMMANDS@", rows).replace("@BRANCHES@", "\n".join(branches))


# ---- fish ----

def fish_quoted(text):
    return "'" + text.replace("\\", "\\\\").replace("'", "\\'") + "'"


def fish(commands):
    lines = ["complete -c vistel -f"]
    for name, command in commands.items():
        where = f"complete -c vistel -n '__fish_seen_subcommand_from {name}'"
        if name:
            lines.append(f"complete -c vistel -n __fish_use_subcommand -a {name} -d {fish_quoted(command.about)}")
        else:
            where = "complete -c vistel -n __fish_use_subcommand"
        for option in command.options:
            line = where
            for spelling in option.names:
                line += f" -l {spelling[2:]}" if spelling.startswith("--") else f" -s {spelling[1:]}"
            if option.is_file:
                line += " -r -F" if option.names else " -F"
            elif option.value and option.names:
                line += " -x"
            if option.choices:
                line += " -a " + fish_quoted(" ".join(map(fish_quoted, option.choices)))
            if option.names:
                line += f" -d {fish_quoted(option.about)}"
            if line != where:
                lines.append(line)
    return NOTE + "\n".join(lines) + "\n"


def main(folder, program, *others):
    commands = read_table(program)
    for other in others:
        name, _, path = other.partition("=")
        about = commands[name].about
        commands[name] = read_table(path)[""]
        commands[name].about = about
    for name, text in (("vistel.bash", bash(commands)), ("_vistel", zsh(commands)), ("vistel.fish", fish(commands))):
        path = Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
