"""Compares the manual page and the completions of bash, zsh and fish with the tool's own --help: the same
commands, and for each the same options. Asks the shells themselves what they would offer; names and skips
those that are not installed. usage: check_manual.py TOOL SOURCE_FOLDER_OF_THE_TOOL"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

TOOL, SOURCES = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
COMPLETIONS = SOURCES / "completions"
STORY, CLIP, TABLE = "a story.quor", "clip.mov", "clips.csv"
# What bash makes of words, the last of which is being typed.
BASH_CASES = {
    ("sh",): {"show", "shots"},
    ("check", ""): {STORY, "folder"},
    ("check", STORY, "a"): {STORY},
    ("show", "--scene", ""): set(),
    ("show", STORY, ""): set(),
    ("write", "--scene", "1A", ""): {STORY, "folder"},
    ("write", STORY, "clip."): {CLIP},
    ("write", STORY, "--sidecar-name", ""): {"full", "stem"},
    ("tag", STORY, "--table", ""): {TABLE, "folder"},
    ("write", STORY, "--d"): {"--dry-run", "--diff"},
    ("has", CLIP, ""): {STORY, CLIP, TABLE, "folder"},
    ("shots", STORY, "--out", ""): {"folder"},
}


def run(*command, **options):
    return subprocess.run(command, capture_output=True, text=True, **options).stdout


def tool():
    commands = run(TOOL, "--help").split("\nCommands:\n")[1].split("\n\n")[0]
    for command in re.findall(r"^  (\w+)", commands, re.M):
        options = run(TOOL, command, "--help").split("\nOptions:\n")[1]
        yield command, set(re.findall(r"^  (?:-\w,)?--([\w-]+)", options, re.M)) - {"help"}


def manual():
    page = (SOURCES / "zelstory.1").read_text(encoding="utf-8")
    chapter = page.split(".Sh COMMANDS\n")[1].split("\n.Sh ")[0]
    for section in chapter.split(".Ss ")[1:]:
        command, text = section.split("\n", 1)
        synopsis, explanation = text.split(".Pp\n", 1)
        named = set(re.findall(r"\bFl -([\w-]+)", synopsis))
        explained = set(re.findall(r"^\.It Fl -([\w-]+)", explanation, re.M))
        assert explained <= named, f"manual: {command}: synopsis has not {explained - named}"
        yield command, named


def bash(*words, folder=None):
    script = '''source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zelstory
              printf "%s\\n" "${COMPREPLY[@]}"'''
    return run("bash", "-c", script, "bash", COMPLETIONS / "zelstory.bash", "zelstory", *words, cwd=folder)


def zsh(*words):
    # Stands in for zsh's own functions, and shows what it was given.
    script = """compdef() { }; _describe() { print -rl -- ${(P)2%%:*} }
        _arguments() { print -rl -- ${${(M)@:#*--*}/#*--/--} }
        words=("${@:2}"); CURRENT=$(($# - 1)); set -- "$1"; source "$1" """
    return run("zsh", "-fc", script, "zsh", COMPLETIONS / "_zelstory", "zelstory", *words)


def fish(*words):
    line = " ".join(("zelstory",) + words)
    return run("fish", "--no-config", "-c", f"source {COMPLETIONS}/zelstory.fish; complete -C '{line}'")


def offers(shell):
    names = re.findall(r"^(\w+)", shell(""), re.M)
    for command in names:
        options = set(re.findall(r"^--([\w-]+)", shell(command, "--"), re.M))
        assert "help" in options, f"{shell.__name__}: {command} --help is not offered"
        yield command, options - {"help"}


def main():
    expected = dict(tool())
    found = {"manual": dict(manual())}
    for shell in (bash, zsh, fish):
        if shutil.which(shell.__name__):
            found[shell.__name__] = dict(offers(shell))
        else:
            print(f"{shell.__name__} is not installed: not checked")
    faults = []
    if shutil.which("mandoc"):
        faults += run("mandoc", "-T", "lint", "-W", "warning", SOURCES / "zelstory.1").splitlines()
    for place, commands in found.items():
        for command in sorted(set(expected) | set(commands)):
            if (has := commands.get(command)) != (should := expected.get(command)):
                faults.append(f"{place}: {command}: has {has}, the tool has {should}")
    with tempfile.TemporaryDirectory() as folder:
        run("sh", "-c", f"touch '{STORY}' {CLIP} {TABLE}; mkdir folder", cwd=folder)
        for words, should in BASH_CASES.items():
            if (has := set(bash(*words, folder=folder).split("\n")) - {""}) != should:
                faults.append(f"bash: {words}: offers {has}, should offer {should}")
    print("\n".join(faults) or f"{len(expected)} commands: all in order")
    return 1 if faults else 0


sys.exit(main())
