#!/usr/bin/python3
"""Mutation testing of the SDK: makes one change at a time and lists those that no check detects.

All mutants are compiled into one build and selected by number at run time, so that a thousand need a single build. Each
check first records which mutants it reaches; a mutant is then tested by these checks only, fastest first.
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import random
import shlex
import shutil
import subprocess
import sys
import time

from places import Finder, Mutant

ROOMS = ["core", "platform/linux", "ui/Common", "ui/ConsentBanner", "ui/PreferenceCenter", "ui/SettingsPrompt"]
TESTS = ["configuration_tests", "core_tests", "ui_tests", "testing_tests", "sim_tests", "proof_tests", "platform_tests",
         "signals_tests", "tools_tests", "fleet_tests"]
FIRST_SEED = 2_000_000_000  # from here on, worlds have privacy signals
SEEDS = 300


class Mutants:
    def __init__(self, source: pathlib.Path, jobs: int) -> None:
        self.source = source
        self.work = source / "build/mutants"
        self.copy = self.work / "source"
        self.build = self.work / "build"
        self.jobs = jobs
        self.mutants: list[tuple[pathlib.Path, Mutant]] = []

    # Writes only changed files, so that a second run builds little.
    def write(self, files: dict[pathlib.Path, bytes]) -> None:
        for path, content in files.items():
            target = self.copy / path
            if not target.exists() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)
                shutil.copymode(self.source / path, target)

    def originals(self) -> dict[pathlib.Path, bytes]:
        names = subprocess.check_output(["git", "-C", self.source, "ls-files", "-z"], text=True).split("\0")
        return {pathlib.Path(name): (self.source / name).read_bytes() for name in names if (self.source / name).is_file()}

    def configure(self) -> None:
        options = {"CMAKE_BUILD_TYPE": "Release", "CMAKE_CXX_FLAGS_RELEASE": "-O1 -DNDEBUG", "BUILD_SHARED_LIBS": "OFF",
                   "CMAKE_C_COMPILER": "clang-19", "CMAKE_CXX_COMPILER": "clang++-19", "QUILLON_QTQUICK": "OFF",
                   "QUILLON_RECEIVER": "OFF", "CMAKE_EXE_LINKER_FLAGS": "-fuse-ld=lld"}
        run(["cmake", "-G", "Ninja", "-S", self.copy, "-B", self.build, *(f"-D{k}={v}" for k, v in options.items())])

    def compile(self) -> None:
        run(["cmake", "--build", self.build, "-j", str(self.jobs), "--target", "quillon-sim", "quillon-consent", *TESTS])

    # Selects a sample of all possible mutants below `rooms`.
    def choose(self, rooms: list[str], number: int, seed: int) -> None:
        commands = json.loads((self.build / "compile_commands.json").read_text())
        files = {}
        for entry in commands:
            path = pathlib.Path(entry["file"])
            if path.is_relative_to(self.copy) and any(path.is_relative_to(self.copy / room) for room in rooms):
                files.setdefault(path, arguments(entry))
        with concurrent.futures.ProcessPoolExecutor(self.jobs) as pool:
            found = dict(zip(files, pool.map(find, files, files.values())))
            everything = [(path, mutant) for path in sorted(found) for mutant in found[path]]
            sample = random.Random(seed).sample(everything, min(number, len(everything)))
            chosen = collections.defaultdict(list)
            for path, mutant in sample:
                chosen[path].append(mutant)
            compiling = pool.map(compiled, chosen, [files[path] for path in chosen], chosen.values())
            for path, mutants in zip(chosen, compiling):
                self.mutants += [(path.relative_to(self.copy), mutant) for mutant in mutants]
        print(f"{len(everything)} places in {len(files)} files; {len(sample)} chosen, {len(self.mutants)} of them compile")
        for i, (_, mutant) in enumerate(self.mutants):
            mutant.number = i

    def plant(self) -> None:
        mutants = collections.defaultdict(list)
        for path, mutant in self.mutants:
            mutants[path].append(mutant)
        self.write({path: Finder(self.copy / path, []).render(inside) for path, inside in mutants.items()})

    def command(self, check: str) -> list[str]:
        if check == "sim":
            return [str(self.build / "bin/quillon-sim"), "--from", str(FIRST_SEED), "--seeds", str(SEEDS)]
        return ["ctest", "--test-dir", str(self.build), "-R", f"^{check}$"]

    # Runs each check once, unchanged: its duration in seconds and the mutants that it reaches.
    def reach(self) -> dict[str, tuple[float, bytes]]:
        reached = {}
        for check in ["sim", *TESTS]:
            marks = self.work / f"{check}.reached"
            marks.write_bytes(bytes(max(1, len(self.mutants))))
            begin = time.monotonic()
            if not passes(self.command(check), {"QUILLON_MUTANTS_REACHED": str(marks)}, 900):
                sys.exit(f"{check} fails without a change")
            reached[check] = time.monotonic() - begin, marks.read_bytes()
            print(f"{check}: {reached[check][0]:.0f} s, comes by {sum(reached[check][1])}", flush=True)
        return dict(sorted(reached.items(), key=lambda item: item[1][0]))

    # The first check that fails with the mutant; None if it survives.
    def killer(self, number: int, reached: dict[str, tuple[float, bytes]]) -> str | None:
        for check, (seconds, marks) in reached.items():
            if marks[number] and not passes(self.command(check), {"QUILLON_MUTANT": str(number)}, 20 + 8 * seconds):
                return check
        return None

    def judge(self) -> int:
        reached = self.reach()
        killed: collections.Counter = collections.Counter()
        survivors, unreached = [], []
        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            killers = pool.map(lambda number: self.killer(number, reached), range(len(self.mutants)))
            for (path, mutant), killer in zip(self.mutants, killers):
                isReached = any(marks[mutant.number] for _, marks in reached.values())
                if killer:
                    killed[killer] += 1
                else:
                    (survivors if isReached else unreached).append((path, mutant))
                    print(f"{'survives' if isReached else 'unreached'}: {self.description(path, mutant)}", flush=True)
        total = len(self.mutants)
        print(f"{killed.total()} of {total} killed ({100 * killed.total() / max(1, total):.1f} %): "
              f"{', '.join(f'{check} {count}' for check, count in killed.most_common())}; "
              f"{len(survivors)} survive, {len(unreached)} no check comes by")
        return 0

    def description(self, path: pathlib.Path, mutant: Mutant) -> str:
        source = (self.source / path).read_bytes()
        before = " ".join(source[mutant.begin:mutant.end].decode().split())
        after = " ".join(mutant.changed.split())
        what = f"{before} -> {after}" if before and after else before or after
        return f"{path}:{mutant.line}: {mutant.kind}: {what[:160]}"


def run(command: list) -> None:
    if subprocess.run([str(part) for part in command], stdout=subprocess.DEVNULL).returncode != 0:
        sys.exit(f"failed: {shlex.join(map(str, command))}")


def passes(command: list[str], surroundings: dict[str, str], seconds: float) -> bool:
    process = subprocess.Popen(command, env=os.environ | {"GTEST_FAIL_FAST": "1", "TZ": "Europe/Berlin"} | surroundings,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True)
    try:
        return process.wait(seconds) == 0
    except subprocess.TimeoutExpired:
        return False
    finally:
        try:
            os.killpg(process.pid, 9)
        except ProcessLookupError:
            pass


def arguments(entry: dict[str, str]) -> list[str]:
    parts = shlex.split(entry["command"])[1:]
    at = parts.index("-o")
    del parts[at:at + 2]
    return [part for part in parts if part not in {"-c", entry["file"]} and not part.startswith("-W")]


def find(path: pathlib.Path, flags: list[str]) -> list[Mutant]:
    return Finder(path, flags).mutants()


def compiled(path: pathlib.Path, flags: list[str], mutants: list[Mutant]) -> list[Mutant]:
    for i, mutant in enumerate(mutants):
        mutant.number = i
    return Finder(path, flags).compiling(mutants)


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("rooms", nargs="*", default=ROOMS, metavar="FOLDER")
    parser.add_argument("--sample", type=int, default=300, help="mutants at most (300)")
    parser.add_argument("--seed", type=int, default=1, help="of the sample (1)")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    options = parser.parse_args()
    mutants = Mutants(pathlib.Path(__file__).resolve().parents[2], options.jobs)
    mutants.write(mutants.originals())
    mutants.configure()
    mutants.choose(options.rooms or ROOMS, options.sample, options.seed)
    mutants.plant()
    mutants.compile()
    return mutants.judge()


if __name__ == "__main__":
    sys.exit(main())
