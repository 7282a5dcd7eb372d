"""A build of a copy of the tree, and benches on which one changed file of it is compiled and linked.

Nothing here writes outside the folder of the mutants: the tree itself is only read.
"""

import json
import os
import re
import shlex
import shutil
import subprocess
from pathlib import Path

# One letter and one digit: a path of the base build becomes one of a bench without a change of length.
BASE = "b0"
SANITIZED = "s0"  # the core alone, with the sanitizers; linked with the tests of the base build
SANITIZERS = ["-fsanitize=address,undefined", "-fno-sanitize-recover=all"]
LIBRARY = "src/libstatecut.a"


class BuildError(Exception):
    pass


def needed(command, cwd, **options):
    """As run, for what must not fail."""
    done = run(command, cwd, **options)
    if done.returncode != 0:
        raise BuildError(f"status {done.returncode} of {shlex.join(command)[-2000:]}\n{done.stdout}")
    return done


def run(command, cwd, **options):
    return subprocess.run(command, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, text=True, errors="replace", **options)


class Base:
    """The unchanged build: its objects, its test programs, how each was made."""

    def __init__(self, root, folder):
        self.root, self.folder = Path(root), Path(folder)
        self.tree, self.build = self.folder / "tree", self.folder / BASE
        self.links, self.compiles = {}, {}

    def copy_tree(self):
        """Brings the copy up to date; a file that did not change keeps its time."""
        listed = run(["git", "ls-files", "-co", "--exclude-standard", "-z"], self.root).stdout
        wanted = {name for name in listed.split("\0") if name and
                  ((self.root / name).is_file() or (self.root / name).is_symlink())}
        for name in wanted:
            source, copy = self.root / name, self.tree / name
            if source.is_symlink():
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.unlink(missing_ok=True)
                copy.symlink_to(os.readlink(source))
                continue
            content = source.read_bytes()
            if not copy.exists() or copy.read_bytes() != content:
                copy.parent.mkdir(parents=True, exist_ok=True)
                copy.write_bytes(content)
            copy.chmod(source.stat().st_mode & 0o777)
        for copy in self.tree.rglob("*"):
            if copy.is_file() and str(copy.relative_to(self.tree)) not in wanted:
                copy.unlink()

    def make(self, jobs):
        linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold"] if shutil.which("ld.gold") else []
        for name, preset, target in ((BASE, "mutants", "all"), (SANITIZED, "mutants-asan", "statecut_core")):
            build = self.folder / name
            needed(["cmake", "--preset", preset, "-B", str(build), *linker], self.tree)
            needed(["cmake", "--build", str(build), "--parallel", str(jobs), "--target", target],
                   self.folder)
            self.compiles[name] = {}  # source -> (object, command)
            for entry in json.loads((build / "compile_commands.json").read_text()):
                command = shlex.split(entry["command"])
                target = command[command.index("-o") + 1]
                if "statecut_core.dir" in target:
                    source = os.path.relpath(entry["file"], self.tree)
                    self.compiles[name][source] = (target, command)
        self.users = self.read_users()

    def read_users(self):
        """Which core sources include a header."""
        users = {}
        sources = {target: source for source, (target, _) in self.compiles[BASE].items()}
        current = None
        for line in run(["ninja", "-C", str(self.build), "-t", "deps"], self.folder).stdout.splitlines():
            if line and not line.startswith(" "):
                current = sources.get(line.split(": ")[0])
            elif current and line.strip():
                path = os.path.normpath(os.path.join(self.build, line.strip()))
                if path.startswith(str(self.tree)):
                    users.setdefault(os.path.relpath(path, self.tree), set()).add(current)
        return users

    def link_command(self, program):
        if program not in self.links:
            lines = run(["ninja", "-C", str(self.build), "-t", "commands", f"bin/{program}"],
                        self.folder).stdout.splitlines()
            part = next(p for p in lines[-1].split(" && ") if f" -o bin/{program} " in p)
            self.links[program] = shlex.split(part)
        return self.links[program]


class Bench:
    """A folder with the programs of one changed file, linked as they are asked for."""

    def __init__(self, base, number):
        self.base = base
        self.name = f"w{number}"
        self.folder = base.folder / self.name
        self.programs = set()
        shutil.rmtree(self.folder, ignore_errors=True)
        for part in ("bin", "tmp", "objects"):
            (self.folder / part).mkdir(parents=True)
        # The sources as links, so that one of them can be replaced for every #include.
        for source in (base.tree / "src").rglob("*"):
            place = self.folder / "src" / source.relative_to(base.tree / "src")
            if source.is_dir():
                place.mkdir(parents=True, exist_ok=True)
            else:
                place.parent.mkdir(parents=True, exist_ok=True)
                place.symlink_to(source)
        self.changed = None
        self.sanitized = False

    def restore(self):
        for part in ("bin", "tmp", "objects"):
            run(["chmod", "-R", "u+rwX", str(self.folder / part)], "/")
            shutil.rmtree(self.folder / part)
            (self.folder / part).mkdir()
        self.programs = set()
        if self.changed:
            (self.folder / self.changed).unlink()
            (self.folder / self.changed).symlink_to(self.base.tree / self.changed)
            self.changed = None

    def compile(self, path=None, text=None, build=BASE):
        """Compiles the changed file, or all core sources that include it; false when one does not."""
        self.restore()
        self.sanitized = build == SANITIZED
        objects = {target: target for target, _ in self.base.compiles[build].values()}
        if path:
            self.changed = path
            (self.folder / path).unlink()
            (self.folder / path).write_text(text)
            is_header = path.endswith(".h")
            sources = sorted(self.base.users.get(path, ())) if is_header else [path]
            if not sources:
                return False
            for source in sources:
                target, command = self.base.compiles[build][source]
                place = str(self.folder / "objects" / source.replace("/", "_")) + ".o"
                command = [part.replace(str(self.base.tree / "src"), str(self.folder / "src"))
                           for part in command]
                command[command.index("-o") + 1] = place
                command += ["-Wno-error", "-Werror=return-type"]
                if run(command, self.base.folder / build).returncode != 0:
                    return False
                if is_header:
                    self.keep_inline_functions(place)
                objects[target] = place
        archive = self.folder / "objects" / "libstatecut.a"
        needed(["ar", "qcs", str(archive), *objects.values()], self.base.folder / build)
        return True

    @staticmethod
    def keep_inline_functions(place):
        """Makes the changed inline functions of an object its own: the linker would otherwise take
        the unchanged ones of a test's object."""
        whole = place + ".whole"
        for command in (["ld", "-r", "--force-group-allocation", place, "-o", whole],
                        ["nm", "--defined-only", whole]):
            done = needed(command, "/")
        weak = re.findall(r"^[0-9a-f]+ [WVu] (\S+)$", done.stdout, re.M)
        if not weak:
            return
        Path(place + ".weak").write_text("".join(name + "\n" for name in weak))
        needed(["objcopy", f"--localize-symbols={place}.weak", whole, place], "/")

    def link(self, program):
        """Links a program once; false when the change leaves something undefined."""
        if program in self.programs:
            return True
        place = self.folder / "bin" / program
        command = [str(self.folder / "objects" / "libstatecut.a") if part == LIBRARY
                   else str(place) if part == f"bin/{program}" else part
                   for part in self.base.link_command(program)]
        if self.sanitized:
            command += SANITIZERS
        if run(command, self.base.build).returncode != 0:
            return False
        # The tests know the programs they start by the path of the build.
        old = f"/{self.base.folder.name}/{BASE}/".encode()
        new = f"/{self.base.folder.name}/{self.name}/".encode()
        place.write_bytes(place.read_bytes().replace(old, new))
        self.programs.add(program)
        return True
