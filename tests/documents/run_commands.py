"""Runs the commands that the documents show, as written, in a copy of the sources where build/release is the
given build, and compares what they print with what is shown below them. The commands of a section share a
shell, and all documents a home. usage: run_commands.py SOURCES BUILD DOCUMENT..."""
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

# They change the machine, or take long: .ci/run runs them in a bare root.
LEFT_TO_CI = {"scripts/demo", "scripts/test", "scripts/package", "apt-get install ./build/packages/*.deb"}
# What a reader of the manual page has, beside the files that it shows by cat: a script with a scene 12A, clips.
CLIPS = ("A001.mov", "footage/A001.mov", "footage/A002.mov", "footage/A003.mov")

MARKDOWN = re.compile(
    r"^#+ (?P<section>.*)\n|(?:`(?P<file>[\w/.]+)`:\n\n)?^```(?P<language>\w*)\n(?P<fenced>(?:.*\n)*?)^```\n"
    r"|(?<=\n\n)(?P<indented>(?:    .*\n|\n(?=    ))+)", re.M)
MANUAL = re.compile(
    r"^\.S[hs] (?P<section>.*)\n|^\.Bd -literal.*\n(?P<display>(?:.*\n)*?)^\.Ed\n"
    r"|^\.Dl (?P<line>.*\n)", re.M)


class Step:
    """A command, or a file that is shown (content)."""

    def __init__(self, place, text, shown=None, content=None):
        self.place, self.text, self.shown, self.content = place, text, shown, content

    def script(self, note):
        if self.content is not None:
            return f"cp '{note}.content' {self.text}\n"
        return f"eval \"$(cat '{note}.command')\" >'{note}.out' 2>&1 </dev/null; echo $? >'{note}.status'\n"

    def fault(self, note):
        if self.content is not None:
            return None
        if not pathlib.Path(f"{note}.status").exists():
            return f"{self.place}: error: was not reached: {self.text}"
        status = pathlib.Path(f"{note}.status").read_text().strip()
        printed = pathlib.Path(f"{note}.out").read_text(encoding="utf-8")
        parts = [] if self.shown is None else re.split(r"^\.\.\.\n", self.shown, flags=re.M)
        if status == "0" and (not parts or re.fullmatch(".*".join(map(re.escape, parts)), printed, re.S)):
            return None
        return f"{self.place}: error: ended with {status}: {self.text}\n{printed}"


def commands(place, line, text):
    """Of a block in which commands have a prompt, the other lines are what these print."""
    shown = text.startswith("$ ")
    if not shown:
        text = re.sub(r"^(?=.)", "$ ", text, flags=re.M)
    for match in re.finditer(r"^\$ ((?:.*\\\n)*.*)\n((?:(?!\$ ).*\n)*)", text, re.M):
        at = line + text.count("\n", 0, match.start())
        if shown and match[1].startswith("cat "):  # a file of the reader's
            yield Step(f"{place}:{at}", match[1][4:], content=match[2])
        else:
            yield Step(f"{place}:{at}", match[1], match[2] if shown else None)


def sections(name, text):
    """The steps of each section."""
    steps = []
    for match in (MANUAL if name.endswith(".1") else MARKDOWN).finditer(text):
        kind, found = match.lastgroup, match.groupdict()
        line = text.count("\n", 0, match.start(kind)) + 1
        if kind == "section":
            yield steps
            steps = []
        elif kind in ("display", "line"):
            steps += commands(name, line, found[kind].replace("\\&", "").replace("\\e", "\\"))
        elif kind == "indented":
            steps += commands(name, line, re.sub(r"^    ", "", found[kind], flags=re.M))
        elif found["language"] == "sh":
            steps += commands(name, line, found[kind])
        elif found["file"]:
            steps.append(Step(f"{name}:{line}", found["file"], content=found[kind]))
        elif found["language"] not in ("cpp", "xml"):  # those are files of examples/
            steps.append(Step(f"{name}:{line}", "echo 'a block of an unknown kind' && false"))
    yield steps


def run(steps, folder, home):
    notes = pathlib.Path(tempfile.mkdtemp(dir=home.parent))
    script = ""
    for number, step in enumerate(steps):
        note = notes / str(number)
        pathlib.Path(f"{note}.command").write_text(step.text, encoding="utf-8")
        pathlib.Path(f"{note}.content").write_text(step.content or "", encoding="utf-8")
        script += step.script(note)
    environment = {"HOME": str(home), "PATH": f"{home}/.local/bin:{os.environ['PATH']}", "LANG": "C.UTF-8"}
    subprocess.run(["sh", "-c", script], cwd=folder, env=environment, check=False)
    return [fault for number, step in enumerate(steps) if (fault := step.fault(notes / str(number)))]


def copy(sources, build, folder):
    shutil.copytree(sources, folder, symlinks=True,
                    ignore=lambda at, _: ("build", ".git", ".cache") if pathlib.Path(at) == sources else ())
    (folder / "build").mkdir()
    (folder / "build/release").symlink_to(build)


def prepare(folder, sources):
    (folder / "footage").mkdir(parents=True)
    for clip in CLIPS:
        (folder / clip).touch()
    story = (sources / "examples/stories/harbour_lights.quor").read_text(encoding="utf-8")
    story = story.replace('sceneNumber="3"', 'sceneNumber="12A"')
    (folder / "harbour.quor").write_text(story, encoding="utf-8")


def run_by_ci(sources):
    """The commands of the list in .ci/run, and every line of the scripts among them."""
    text = (sources / ".ci/run").read_text()
    assert 'scripts/fresh "${bare[@]}"' in text
    for command in shlex.split(re.search(r"^bare=\((.*?)\)$", text, re.M | re.S)[1], comments=True):
        script = command.split()[0]
        yield from (command, script)
        yield from map(str.strip, (sources / script).read_text().splitlines())


def main():
    sources, build = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    faults = [f".ci/run: error: does not run {command}" for command in LEFT_TO_CI - set(run_by_ci(sources))]
    count = 0
    with tempfile.TemporaryDirectory() as scratch:
        home = pathlib.Path(scratch) / "home"
        home.mkdir()
        for number, name in enumerate(sys.argv[3:]):
            folder = pathlib.Path(scratch) / str(number)
            if name.endswith(".1"):
                prepare(folder, sources)
            else:
                copy(sources, build, folder)
            before = count
            for steps in sections(name, (sources / name).read_text(encoding="utf-8")):
                steps = [step for step in steps if re.sub(r"\s+# .*", "", step.text) not in LEFT_TO_CI]
                count += len(steps)
                faults += run(steps, folder, home)
            if count == before:
                faults.append(f"{name}: error: shows no command")
    print("\n".join(faults) or f"{count} commands: all print what is shown")
    return 1 if faults else 0


sys.exit(main())
