"""Runs vel on every hostile file (cases.py) under a time and memory limit.

    python3 run_hostile.py VEL [--sanitized] [CASE...]

Every run must end within the time limit with status 0, 1 or 2 and without
a sanitizer report or an exhausted memory.  On failure nothing may be
written on standard output (under --format json: one JSON document whose
error says what failed).  Files that cannot be loaded are refused by every
command with FILE:LINE:COLUMN: and the expected message; the others are
checked with the expected status.  Prints one line per case and
"N passed, N failed" at the end; exits 1 if any case failed.
"""

import json
import os
import re
import resource
import subprocess
import sys
import tempfile
import time

from cases import CASES

MEMORY = 1 << 30  # address space of one run (not under the sanitizers)
SANITIZER_RSS_MB = 2048  # their resident-set limit instead
TIMEOUT = 20  # seconds per run; four times as long under the sanitizers
SANITIZER_STATUS = 86  # what a sanitizer's report ends with


class Failure(Exception):
    pass


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))


def run(vel, arguments, sanitized):
    env = dict(os.environ)
    if sanitized:
        env["ASAN_OPTIONS"] = f"exitcode={SANITIZER_STATUS}:hard_rss_limit_mb={SANITIZER_RSS_MB}"
        env["UBSAN_OPTIONS"] = f"exitcode={SANITIZER_STATUS}:print_stacktrace=1"
    timeout = TIMEOUT * (4 if sanitized else 1)
    start = time.monotonic()
    try:
        done = subprocess.run([vel, *arguments], capture_output=True, env=env, timeout=timeout,
                              preexec_fn=None if sanitized else limit_memory)
    except subprocess.TimeoutExpired:
        raise Failure(f"{' '.join(arguments[:1])}: no answer within {timeout} s")
    err = done.stderr.decode("utf-8", "replace")
    what = f"vel {arguments[0]} {' '.join(arguments[2:])}".strip()
    if done.returncode not in (0, 1, 2) or "Sanitizer" in err or "runtime error:" in err:
        raise Failure(f"{what}: status {done.returncode}\n{err[-3000:]}")
    if "bad_alloc" in err or "out of memory" in err:
        raise Failure(f"{what}: ran out of memory:\n{err[-500:]}")
    return done.returncode, done.stdout, err, time.monotonic() - start


def first_line(text):
    return text.split("\n", 1)[0]


def expect_load_error(case, path, status, out, err, json_out):
    if status != 2:
        raise Failure(f"status {status}, expected 2 (the file cannot be loaded)\n{err[:500]}")
    line = first_line(err)
    match = re.match(re.escape(path) + r":(\d+):(\d+): (.*)", line)
    if not match or err.count("\n") != 1:
        raise Failure(f"not one FILE:LINE:COLUMN: message line:\n{err[:500]}")
    if case.message and not re.search(case.message, match.group(3)):
        raise Failure(f"message {match.group(3)[:300]!r} does not match {case.message!r}")
    if json_out is None:
        if out:
            raise Failure(f"standard output on failure: {out[:200]!r}")
        return
    document = json.loads(out)
    if document["error"]["name"] != "load_error" or document["error"]["message"] != line:
        raise Failure(f"JSON error document {out[:300]!r} does not carry {line[:200]!r}")


def check_case(vel, directory, case, sanitized):
    path = os.path.join(directory, case.file)
    with open(path, "wb") as f:
        f.write(case.content())
    runs = [["check", path], ["generate", path, "--no-log"], ["generate", path, "--format", "json"],
            ["export", path, "--to", "xmlbif"]]
    if not case.every_command:
        runs = runs[:1]
    if case.node:
        runs.append(["evaluate", path, "--node", case.node, "--mode", "configured"])
    total = 0.0
    for arguments in runs:
        status, out, err, seconds = run(vel, arguments, sanitized)
        total += seconds
        json_out = out if "json" in arguments else None
        try:
            if case.load:
                expect_load_error(case, path, status, out.decode("utf-8", "replace"), err, json_out)
            elif arguments[0] == "check":
                if case.check is not None and status != case.check:
                    raise Failure(f"status {status}, expected {case.check}\n{err[:500]}")
                if case.message and not re.search(case.message, err):
                    raise Failure(f"findings do not match {case.message!r}:\n{err[:500]}")
                if out:
                    raise Failure(f"standard output: {out[:200]!r}")
            elif status != 0 and json_out is None and arguments[0] != "generate" and out:
                raise Failure(f"standard output on failure: {out[:200]!r}")
            elif status != 0 and json_out is not None and json.loads(out)["error"] is None:
                raise Failure("a failure with a JSON document that has no error")
        except Failure as failure:
            raise Failure(f"vel {' '.join(arguments[:1] + arguments[2:])}: {failure}")
    return total


def main():
    arguments = sys.argv[1:]
    sanitized = "--sanitized" in arguments
    # CTest passes an empty argument where the build is not sanitized.
    arguments = [a for a in arguments if a not in ("--sanitized", "")]
    if not arguments:
        print(__doc__, file=sys.stderr)
        return 2
    vel, chosen = arguments[0], set(arguments[1:])
    passed = failed = 0
    with tempfile.TemporaryDirectory() as directory:
        for case in CASES:
            if chosen and case.name not in chosen:
                continue
            try:
                seconds = check_case(vel, directory, case, sanitized)
                print(f"ok   {case.name} ({seconds:.1f} s)")
                passed += 1
            except Failure as failure:
                print(f"FAIL {case.name}: {failure}")
                failed += 1
            os.remove(os.path.join(directory, case.file))
    print(f"{passed} passed, {failed} failed")
    return 1 if failed or not passed else 0


if __name__ == "__main__":
    sys.exit(main())
