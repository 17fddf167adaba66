"""Checks what `vxfile catalog` reports of files that change, whose names aren't UTF-8, or after it was interrupted.

usage: catalog.py VXFILE FOLDER_OF_REFERENCE_FILES
"""

import csv
import io
import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import threading
import time

VXFILE, REFERENCE = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])


def run(*options, status, folder=None):
    done = subprocess.run([VXFILE, "catalog", *options], capture_output=True, check=False, cwd=folder)
    assert done.returncode == status, (options, done)
    return done.stdout.decode(), done.stderr.decode()


def rows_of(text):
    return list(csv.DictReader(io.StringIO(text, newline="")))


def check_changes(folder):
    """Files that vanish, appear and are replaced while they are read harm neither the others nor the exit status."""
    busy = folder / "busy"
    busy.mkdir()
    sources = [(REFERENCE / name).read_bytes() for name in ("small_example.vxd", "several_recordings.vxd")]
    for i in range(600):
        (busy / f"{i:03}.vxd").write_bytes(sources[0])
    ended = threading.Event()

    def change():
        i = 0
        while not ended.is_set():
            i += 1
            path = busy / f"{(7 * i) % 600 | 1:03}.vxd"  # those with odd numbers
            if i % 3:
                (folder / "new").write_bytes(sources[i % 2])
                os.replace(folder / "new", path)
            else:
                path.unlink(missing_ok=True)

    thread = threading.Thread(target=change)
    thread.start()
    try:
        for jobs in "1", "3", "8":
            rows = {row["path"]: row for row in rows_of(run("busy", "-j", jobs, status=0, folder=folder)[0])}
            for i in range(0, 600, 2):
                row = rows[f"busy/{i:03}.vxd"]
                assert (row["file_state"], row["size"]) == ("finished", str(len(sources[0]))), row
            for row in rows.values():
                changed = row["file_state"] == "unfinished" and row["reason"] == "It changed while it was read."
                assert row["file_state"] == "finished" or changed, row
    finally:
        ended.set()
        thread.join()


def check_names(folder):
    """Names that aren't UTF-8 are escaped, in the same way everywhere, and never mixed up with others."""
    odd = folder / "odd"
    odd.mkdir()
    names = {b"m\xe4rz.vxd": "m\\xe4rz.vxd", b"m\\xe4rz.vxd": "m\\x5cxe4rz.vxd", "m\u00e4rz.vxd".encode(): "m\u00e4rz.vxd",
             b"new\nline \xff\xc3\xbc.vxd": "new\nline \\xff\u00fc.vxd"}
    for name in names:
        shutil.copyfile(REFERENCE / "small_example.vxd", os.fsencode(odd) + b"/" + name)
    expected = sorted("odd/" + text for text in names.values())
    rows = rows_of(run("odd", status=2, folder=folder)[0])  # no name with a backslash can be opened
    assert sorted(row["path"] for row in rows) == expected, rows
    assert all(row["run_raw"] == (row["path"] if row["kind"] else "") for row in rows), rows
    items = [json.loads(line) for line in run("odd", "--jsonl", status=2, folder=folder)[0].splitlines()]
    assert [item["path"] for item in items] == [row["path"] for row in rows]
    database = str(folder / "odd.db")
    for read in 4, 1:  # the unreadable one is tried again
        assert f"4 files, {read} of them read now" in run(str(odd), "--sqlite", database, status=2)[1]
    assert ", 2 unreadable" in run(str(odd), str(odd / "nowhere"), "--sqlite", database, status=2)[1]
    latin = os.fsencode(folder) + b"/l\xe4tin"
    os.mkdir(latin)
    for name in b"kept.vxd", b"deleted.vxd":
        shutil.copyfile(REFERENCE / "small_example.vxd", latin + b"/" + name)
    for listed in 2, 1:
        run(os.fsdecode(latin), "--sqlite", str(folder / "latin.db"), status=0)
        assert stored(str(folder / "latin.db"), "SELECT COUNT(*) FROM files") == [(listed,)]
        (pathlib.Path(os.fsdecode(latin)) / "deleted.vxd").unlink(missing_ok=True)
    assert sorted(path for path, in stored(database, "SELECT path FROM files")) == sorted(
        str(folder / path) for path in expected)


def stored(path, sql):
    with sqlite3.connect(path) as connection:
        return connection.execute(sql).fetchall()


def check_large_doses(folder):
    """The database has doses beyond 32 bits."""
    large = folder / "large"
    large.mkdir()
    raw = (REFERENCE / "small_example.vxd").read_bytes()
    (large / "run.vxd").write_bytes(raw.replace(b"Dose=1000".ljust(16, b"\0"), b"Dose=30000000000", 1))
    database = str(folder / "large.db")
    run(str(large), "--sqlite", database, status=0)
    assert stored(database, "SELECT dose, dose_text FROM recordings") == [(30000000000, "30 mM")]


def check_interruption(folder):
    """Ctrl-C leaves an existing database unchanged, and no new one."""
    many = folder / "many"
    many.mkdir()
    for i in range(3000):
        shutil.copyfile(REFERENCE / "small_example.vxd", many / f"{i}.vxd")
    database, new = str(folder / "old.db"), str(folder / "new.db")
    run(str(folder / "busy"), "--sqlite", database, status=0)
    for path in database, new:
        before = pathlib.Path(path).read_bytes() if os.path.exists(path) else None
        process = subprocess.Popen([VXFILE, "catalog", str(many), "--sqlite", path, "-j", "1"], stderr=subprocess.PIPE)
        time.sleep(0.05)
        process.send_signal(signal.SIGINT)
        process.communicate()
        if process.returncode in (130, -signal.SIGINT):  # the latter if it had hardly begun
            assert (pathlib.Path(path).read_bytes() if os.path.exists(path) else None) == before
        else:
            assert process.returncode == 0  # it was faster


with tempfile.TemporaryDirectory() as top:
    root = pathlib.Path(top).resolve()
    check_changes(root)
    if os.name == "posix":
        check_names(root)
    check_large_doses(root)
    check_interruption(root)

print("the catalogue agrees with the folders")
