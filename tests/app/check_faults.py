"""Has calls of the system and of the allocator fail under the command, one at a time.

check_faults.py HIERFIT SHIM EXAMPLE: a run that meets a fault ends with status 0 and the bytes of a
run without, or with the status of what may pass, a sentence and the old files whole; never by a
signal, and never with a file beside. HIERFIT_FAULTS says how many places each kind of fault is tried
at (default 24, "all" for every one).
"""
import concurrent.futures
import os
import pathlib
import signal
import subprocess
import sys
import tempfile

FAILED = 2  # the exit status of what may pass
OLD = b"old"
SECONDS = 60  # what takes longer hangs
FORMS = ["html", "txt", "json", "csv", "md", "tex", "svg", "vl.json"]
OFFICE_FORMS = ["xlsx", "docx", "pdf", "png"]
EVERY = 10**12  # a call that never comes

hierfit, shim, example = sys.argv[1:4]
documents = [os.path.join(example, name) for name in ("model.pmml", "result.xml")]
places = os.environ.get("HIERFIT_FAULTS", "24")


class Run:
    """One run over files that are there already, in a folder of its own."""

    def __init__(self, arguments, names=(), shimmed=True, limit=None, **faults):
        with tempfile.TemporaryDirectory() as folder:
            self.folder = pathlib.Path(folder, "out")
            self.folder.mkdir()
            for name in names:
                (self.folder / name).write_bytes(OLD)
            count = pathlib.Path(folder, "count")
            environment = {**os.environ, "LC_ALL": "C", "FAULT_COUNT": str(count)}
            environment.update({name: str(value) for name, value in faults.items()})
            if shimmed:
                environment["LD_PRELOAD"] = shim
            self.start(arguments, environment, limit)
            self.count = int(count.read_text()) if count.exists() else 0
            self.files = {str(file.relative_to(self.folder)): file.read_bytes()
                          for file in self.folder.rglob("*") if file.is_file()}

    def start(self, arguments, environment, limit):
        bound = ["prlimit", f"--as={limit}", "--core=0"] if limit else []
        try:
            done = subprocess.run([*bound, hierfit, *arguments], cwd=self.folder, env=environment,
                                  stdin=subprocess.DEVNULL, capture_output=True, timeout=SECONDS)
            self.status, self.output, self.errors = done.returncode, done.stdout, done.stderr
        except subprocess.TimeoutExpired:
            self.status, self.output, self.errors = "hangs", b"", b""


failures = []


def expect(true, what, run):
    if not true:
        failures.append(what)
        print(f"{what}: status {run.status}, {run.errors[:300]!r}, {sorted(run.files)}")


def sampled(total):
    """Places from 1 to `total`, the first ones and the rest at equal distances."""
    if places == "all" or total <= int(places):
        return range(1, total + 1)
    step = total / int(places)
    return sorted({1, 2, 3, total, *(int(at * step) + 1 for at in range(int(places)))})


def is_sentence(text):
    lines = text.decode().splitlines()
    return bool(lines) and text.endswith(b"\n") and all(": " in line for line in lines)


def judge(what, run, good):
    """The run went as well as `good`, or failed as it should. An index tells of failures."""
    if run.status == 0:
        expect(run.files == good.files and not run.errors, f"{what}, another result", run)
        return
    expect(run.status == FAILED and is_sentence(run.errors), f"{what}, another end", run)
    for name, text in run.files.items():
        expect(text in (OLD, good.files.get(name)) or name == "index.html",
               f"{what}, {name} torn or left behind", run)


def sweep(what, arguments, names, call, suffix="", **faults):
    """Each sampled call fails in a run of its own."""
    good = Run(arguments, names, FAULT=f"{call}:{EVERY}", **faults)
    expect(good.status == 0 and not good.errors, f"{what} without a fault", good)
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = pool.map(lambda at: (at, Run(arguments, names, FAULT=f"{call}:{at}{suffix}", **faults)),
                        sampled(good.count))
        for at, run in runs:
            judge(f"{what}, {call} {at}{suffix} of {good.count}", run, good)


def outputs(names):
    return [word for name in names for word in ("-o", name)] + documents


def memory():
    for form in FORMS:
        sweep(form, outputs(["r." + form]), ["r." + form], "alloc")
    sweep("all behind", outputs(["r.html"]), ["r.html"], "alloc", "+")
    sweep("several", ["-j", "2", "-o", ".", "-f", "txt", *documents, *documents], [], "alloc")


def files():
    names = ["r." + form for form in FORMS]
    arguments = outputs(names) + ["--journal", "j.jsonl", "--charts", "."]
    for call in ("write", "fsync", "link", "rename", "open"):
        sweep("files", arguments, names, call)
        sweep("named files", arguments, names, call, NO_TMPFILE=1)


def interruptions():
    names = ["r.html", "r.txt"]
    good = Run(outputs(names), names)
    for call in ("write", "fsync"):
        run = Run(outputs(names), names, FAULT=f"{call}:1", FAULT_ERROR=4)
        expect(run.status == 0 and run.files == good.files, f"{call} is interrupted", run)


def signals():
    """A signal ends the run, leaves no file beside, and finds all outputs old or all new."""
    names = ["r.html", "r.txt", "j.jsonl"]
    arguments = outputs(names[:2]) + ["--journal", names[2]]
    good = Run(arguments, names)
    old = {name: OLD for name in names}
    for call in ("write", "fsync", "link", "rename"):
        for at in range(1, 4):
            for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
                for no_tmpfile in (0, 1):
                    run = Run(arguments, names, FAULT=f"{call}:{at}", NO_TMPFILE=no_tmpfile,
                              FAULT_SIGNAL=int(number))
                    what = f"{number.name} at {call} {at}, NO_TMPFILE={no_tmpfile}"
                    # Files with a name need no link, and the journal is not written by this call.
                    ended = run.status == -number or (no_tmpfile and call == "link") or (
                        call == "write" and at == 3)
                    expect(ended and run.files in (old, good.files), what, run)


def surroundings():
    no_program = Run(documents, FAULT="readlink:1+")
    expect(no_program.status == FAILED and is_sentence(no_program.errors), "no /proc", no_program)
    several = ["-j", "3", "-o", ".", *documents * 3]
    no_threads = Run(several, FAULT="thread:2+")
    expect(no_threads.status == 0 and "index.html" in no_threads.files, "no threads", no_threads)


def little_memory():
    """The libraries for pages and pictures neither crash nor hang in a small address space."""
    for form in OFFICE_FORMS:
        name = "r." + form
        good = Run(outputs([name]), [name], shimmed=False)
        for megabytes in range(120, 340, 20):
            run = Run(outputs([name]), [name], shimmed=False, limit=megabytes << 20)
            judge(f"{form} in {megabytes} MB", run, good)
    for error in (11, -1):
        run = Run(outputs(["r.pdf"]), ["r.pdf"], FAULT="thread:1", FAULT_ERROR=error)
        expect(run.status == FAILED and is_sentence(run.errors), f"a lost thread ({error})", run)


for part in (memory, files, interruptions, signals, surroundings, little_memory):
    part()
sys.exit(f"{len(failures)} of the faults" if failures else 0)
