"""A copy of the tree in which mutants are planted, built and run against the tests, one at a time."""

import hashlib
import os
import pathlib
import re
import resource
import shutil
import signal
import subprocess
import time

# CTest does not run the programs, so it must not ask every mutant which tests it has.
OPTIONS = ["-DLMX_WERROR=OFF", "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
# Like Release, but with -O1: results are the same, and the kernels compile in half the time.
QUICK = ["--preset", "native", "-DCMAKE_BUILD_TYPE=Mutants", "-DCMAKE_CXX_FLAGS_MUTANTS=-O1 -DNDEBUG"]
WITHOUT_EMULATION = "-DSIMDE_INCLUDE_DIR="
BUILDS = {
    "native": [*QUICK, WITHOUT_EMULATION],
    "emulated": QUICK,
    "sanitized": ["--preset", "sanitize", WITHOUT_EMULATION],
}
BUILD_SECONDS = 1800
MEMORY = 16 << 30

# The test programs by kind, the fastest first: the program's path in the build folder, and its
# arguments. "levels" runs two programs again with the capped builds. "sanitized" and "emulated"
# (AVX-512) are separate builds, for mutants that have survived the others.
PROGRAMS = {
    "source": [("tests/source/source_tests",)],
    "fuzz": [("fuzz/replay_methods", "fuzz/methods.corpus"), ("fuzz/replay_kernels", "fuzz/kernels.corpus")],
    "golden": [("tests/golden/golden_tests",)],
    "contexts": [(f"tests/contexts/contexts_without_{function}",) for function in
                 ("all", "CGBitmapContextGetWidth", "CGBitmapContextGetHeight", "CGBitmapContextGetBitsPerPixel",
                  "CGBitmapContextGetBytesPerRow", "CGBitmapContextGetData")],
    "plugin": [("tests/plugin/plugin_tests",)],
    "kernels": [("tests/kernels/kernel_tests",)],
    "levels": [("tests/plugin/plugin_tests",), ("tests/golden/golden_tests",)],
    "sanitized": [("fuzz/replay_methods", "fuzz/methods.corpus"), ("tests/source/source_tests",)],
    "emulated": [("tests/kernels/kernel_tests", "--gtest_filter=*emulated*:All*")],
}
# All levels but the highest, which the plug-in itself uses.
LEVEL_HEADER = pathlib.Path(__file__).parent.parent / "source/kernels/KernelLevel.h"
LEVELS = re.search(r"^enum class KernelLevel { (.*) };$", LEVEL_HEADER.read_text(), re.M).group(1).split(", ")[:-1]

# Kinds that can notice only mutants of certain files. The tests of the kernels use nothing but the
# kernels, and put every operand between inaccessible pages.
ONLY_FOR = {"kernels": "source/kernels/", "levels": "source/kernels/", "sanitized": "^(?!source/kernels/)",
            "emulated": "kernels/(Wide|.*_(wide|avx512))"}

# The kinds that run first for a mutant, by its file, with a filter of suites ("" for all). All
# other kinds follow.
FIRST = [
    ("kernels/(Vector|RunKernels)_avx512", [("emulated", "")]),
    ("kernels/", [("fuzz", ""), ("golden", ""), ("kernels", "-All*:Some*:*transpose*")]),
    ("LMX_[PRSYC]", [("source", ""), ("fuzz", ""), ("golden", ""), ("plugin", "-*Large*")]),
    ("LMX_(Main|Module)|PluginMain", [("source", ""), ("plugin", "HostEntry*")]),
    *((name, [("fuzz", ""), ("golden", ""), ("plugin", suites)]) for name, suites in (
        ("AdjustHSV", "*HSV*:*Colour*:-*Large*"), ("AdjustRGB", "*RGB*:*Colour*:-*Large*"),
        ("FlipRotate", "*FlipRotate*:-*Large*"), ("FreeRotate", "*FreeRotate*:-*Large*"), ("Shear", "*Shear*:-*Large*"),
        ("Stretch", "*Stretch*:-*Large*"), ("Trim", "*Trim*:-*Large*"), ("Gradient", "Gradient*"))),
]


def may_notice(kind, file):
    return re.search(ONLY_FOR.get(kind, ""), file) is not None


class Result:
    """The outcome of a mutant: "killed", "stillborn", "equal" or "survived"; the kind of test, and how it failed."""

    def __init__(self, outcome, kind="", how=""):
        self.outcome, self.kind, self.how = outcome, kind, how


class Workbench:
    """A copy of the tree at `folder`, with its builds below. `seconds`, shared by all workbenches, has the time that
    each program takes without a mutant. `without` lists the kinds of tests that are left out."""

    def __init__(self, repository, folder, seconds, without):
        self.repository, self.tree, self.seconds, self.without = repository, folder, seconds, without
        self.builds = {name: folder / "build" / name for name in BUILDS}
        self.objects = ""

    # ------------------------------------------------------------------------------------- the tree

    def prepare(self, files, checks):
        """Copies the repository and builds the programs that test mutants of the files. If asked to, checks that the
        tests pass."""
        self._copy()
        programs = [entry for entry in self._all_programs() if any(may_notice(entry[0], file) for file in files)]
        for name in sorted({self._build_of(kind) for kind, *_ in programs}):
            self._must_run(["cmake", *BUILDS[name], "-B", self.builds[name], *OPTIONS])
        for kind, program, _ in programs:
            self._must_run(self._ninja(self._build_of(kind), *self._targets(kind, program)))
        self.objects = self._objects()
        for kind, program, environment in programs if checks else ():
            start = time.monotonic()
            result = self._run(kind, program, environment)
            self.seconds[self._build_of(kind), program[0]] = time.monotonic() - start
            if result:
                raise SystemExit(f"without any mutant, {program[0]} fails: {result.how}")

    def _copy(self):
        listing = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], check=True,
                                 cwd=self.repository, stdout=subprocess.PIPE).stdout
        wanted = {name for name in os.fsdecode(listing).split("\0") if name and (self.repository / name).is_file()}
        for name in wanted:
            source, copy = self.repository / name, self.tree / name
            if not copy.is_file() or copy.read_bytes() != source.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, copy)
                shutil.copymode(source, copy)
        for path in [path for path in self.tree.rglob("*") if path.is_file()]:
            name = path.relative_to(self.tree).as_posix()
            if name not in wanted and not name.startswith("build/"):
                path.unlink()

    def _must_run(self, command):
        done = subprocess.run(list(map(str, command)), cwd=self.tree, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              text=True, errors="replace", check=False)
        if done.returncode:
            raise SystemExit(f"{' '.join(map(str, command))} fails:\n{done.stdout}")

    # ------------------------------------------------------------------------------------- a mutant

    def judge(self, mutant):
        """Plants the mutant, runs the tests that may kill it, and removes it again."""
        file = self.tree / mutant.file
        text = file.read_text()
        file.write_text(mutant.planted(text))
        try:
            return self._judge(mutant)
        finally:
            file.write_text(text)

    def _judge(self, mutant):
        if re.search("kernels/(Wide|LMX_Pixel|RunKernels_wide|Vector_sse2)", mutant.file):
            result = self._at_sse2()
            if result:
                return result
        if not self._builds("native", "lmx_product", "lmx_level"):
            return Result("stillborn")
        if self._objects() == self.objects:
            return Result("equal")
        for kind, program, environment in self._ordered(mutant.file):
            if not self._builds(self._build_of(kind), *self._targets(kind, program)):
                return Result("killed", kind, "its compilation")
            result = self._run(kind, program, environment)
            if result:
                return result
        return Result("survived")

    def _at_sse2(self):
        """The result at this level of a mutant that is compiled for several levels. Builds only the object of this
        level, since each takes long to compile, and the build capped at it. None if the mutant survives."""
        object_file = "CMakeFiles/lmx_product.dir/source/kernels/RunKernels_sse2.cpp.o"
        if not self._builds("native", object_file):
            return Result("stillborn")
        build = self.builds["native"]
        commands = subprocess.run(["ninja", "-C", build, "-t", "commands", "LMX-sse2"], check=True, text=True,
                                  stdout=subprocess.PIPE).stdout
        # Ninja would compile the other files first.
        subprocess.run(commands.splitlines()[-1], shell=True, cwd=build, check=True, stdout=subprocess.DEVNULL)
        capped = {"LMX_LIBRARY": str(build / "libLMX-sse2.so")}
        programs = [PROGRAMS["fuzz"][0], *PROGRAMS["golden"], PROGRAMS["plugin"][0] + ("--gtest_filter=-*Large*",)]
        return next(filter(None, (self._run("levels", program, capped) for program in programs)), None)

    def _ordered(self, file):
        """The test runs that a mutant of the file has to survive, in their order."""
        first = next((kinds for pattern, kinds in FIRST if re.search(pattern, file)), [])
        everything = [entry for entry in self._all_programs() if may_notice(entry[0], file)]
        ordered = [(kind, program + ((f"--gtest_filter={suites}",) if suites else ()), environment)
                   for wanted, suites in first for kind, program, environment in everything if kind == wanted]
        return ordered + [entry for entry in everything if (entry[0], "") not in first]

    def _all_programs(self):
        for kind, programs in PROGRAMS.items():
            for program in programs if kind not in self.without else ():
                for level in LEVELS if kind == "levels" else ("",):
                    library = self.builds["native"] / f"libLMX-{level}.so"
                    yield kind, program, {"LMX_LIBRARY": str(library)} if level else {}

    # --------------------------------------------------------------------------------- compilations

    def _ninja(self, build, *targets):
        return ["ninja", "-C", self.builds[build], "-j1", *targets]

    def _builds(self, build, *targets):
        try:
            return subprocess.run(list(map(str, self._ninja(build, *targets))), stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL, timeout=BUILD_SECONDS, check=False).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    def _objects(self):
        """A digest of the compiled product, without line numbers or times."""
        digest = hashlib.sha256()
        for file in sorted((self.builds["native"] / "CMakeFiles").glob("lmx_*.dir/**/*.o")):
            digest.update(file.read_bytes())
        return digest.hexdigest()

    @staticmethod
    def _targets(kind, program):
        return ["LMX", pathlib.Path(program[0]).name] + (["LMX_levels"] if kind == "levels" else [])

    @staticmethod
    def _build_of(kind):
        return kind if kind in BUILDS else "native"

    # ----------------------------------------------------------------------------------------- runs

    def _run(self, kind, program, environment):
        """None if the tests pass, else how they killed the mutant. A program that takes far more processor time than
        without a mutant hangs."""
        key = (self._build_of(kind), program[0])
        processor = 3 * self.seconds[key] + 20 if key in self.seconds else 600
        build = self.builds[self._build_of(kind)]
        command = [str(build / program[0]), *program[1:]]
        if "replay" not in program[0]:
            command += ["--gtest_fail_fast", "--gtest_brief=1"]
        log = self.tree / "build/run.log"

        def limit():
            resource.setrlimit(resource.RLIMIT_CPU, (int(processor), int(processor) + 5))
            if kind != "sanitized":  # sanitizers need addresses for their shadow memory
                resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 28, 1 << 28))

        with log.open("wb") as output, subprocess.Popen(
                command, cwd=self.tree, env={**os.environ, **environment}, stdout=output, stderr=subprocess.STDOUT,
                stdin=subprocess.DEVNULL, preexec_fn=limit, start_new_session=True) as process:
            try:
                status = process.wait(timeout=10 * processor)
            except subprocess.TimeoutExpired:
                status = -signal.SIGXCPU
            self._end_group(process.pid)
        if status == 0:
            return None
        return Result("killed", kind, self._how(status, log))

    @staticmethod
    def _end_group(group):
        try:
            os.killpg(group, signal.SIGKILL)
        except ProcessLookupError:
            pass

    @staticmethod
    def _how(status, log):
        text = log.read_bytes()[:1 << 22].decode(errors="replace")
        test = re.search(r"^\[  FAILED  \] ([\w./]+)", text, re.M)
        error = re.search(r"AddressSanitizer: ([\w-]+)|runtime error: ([\w ]+)", text)
        if error:
            return error.group(1) or error.group(2)
        if status > 0:
            return test.group(1) if test else "a finding" if "FINDING" in text else "a failure"
        if -status in (signal.SIGXCPU, signal.SIGKILL):
            return "a hang"
        return f"signal {signal.Signals(-status).name}"
