"""Checks what `vxfile catalog` reports for a folder with files of all kinds and states, as rows and in a database.

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

# Each file: its source, the bytes that are kept, its kind and its state.
FILES = {
    "a-1.vxd": ("small_example.vxd", None, "raw", "finished"),
    "a/b/an.vxd": ("several_recordings.vxd", None, "raw", "finished"),
    "a/b/run.vxd": ("several_recordings.vxd", None, "raw", "finished"),
    "a/b/run.vxr": ("xml/results.vxr", None, "results", "finished"),
    "a/b/run.vxs": ("xml/settings.vxs", None, "settings", "finished"),
    "a/book.xls": ("workbooks/small.xls", None, "workbook", "finished"),
    "a/circle.vxd": ("circle_of_recordings.vxd", None, "raw", "damaged"),
    "a/cut.vxd": ("small_example.vxd", 4000, "raw", "damaged"),
    "a/cut.vxr": ("xml/results.vxr", 2000, "results", "damaged"),
    "a/empty.vxd": ("small_example.vxd", 0, "empty", "unfinished"),
    "a/open.vxd": ("unfinished.vxd", None, "raw", "unfinished"),
    "a/text.vxd": ("small_example.txt", None, "unknown", "damaged"),
    "z.dat": ("version_1.vxd", None, "raw", "finished"),
}


def run(*options, status, folder=None):
    done = subprocess.run([VXFILE, "catalog", *options], capture_output=True, check=False, cwd=folder)
    assert done.returncode == status, (options, done)
    return done.stdout.decode(), done.stderr.decode()


def rows_of(text):
    return list(csv.DictReader(io.StringIO(text, newline="")))


def make(folder):
    for name, (source, size, _, _) in FILES.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes((REFERENCE / source).read_bytes()[:size])
    # Not the last recording is unfinished, but the one before.
    data = (REFERENCE / "unfinished.vxd").read_bytes()
    data = data.replace(b"RecordingData=-1\0\0", b"RecordingData=6418").replace(b"RecordingData=3650", b"RecordingData=-1\0\0")
    (folder / "a/open.vxd").write_bytes(data)
    (folder / "a" / "notes.txt").write_text("not ours")


def check_rows(folder):
    text, summary = run(".", status=1, folder=folder)
    rows = rows_of(text)
    expected = sorted("./" + name for name in FILES)
    assert [row["path"] for row in rows] == expected, [row["path"] for row in rows]
    for row in rows:
        _, _, kind, state = FILES[row["path"][2:]]
        assert (row["kind"], row["file_state"]) == (kind, state), row
        assert int(row["size"]) == (folder / row["path"]).stat().st_size
        assert bool(row["reason"]) == (state != "finished"), row
        seconds = (folder / row["path"]).stat().st_mtime_ns // 10**9
        assert row["modified"].startswith(time.strftime("%Y-%m-%dT%H:%M:%S.", time.gmtime(seconds))), row
    assert summary.startswith("13 files: 7 finished, 2 unfinished, 4 damaged, 0 unreadable\n1 run by Guid, 0 of them"), summary
    for jobs in "1", "7":
        assert run(".", "-j", jobs, status=1, folder=folder)[0] == text
    items = [json.loads(line) for line in run(".", "--jsonl", status=1, folder=folder)[0].splitlines()]
    assert [item["path"] for item in items] == expected
    assert all(type(item["size"]) is int for item in items)


def check_runs(folder):
    """The files of one Guid name each other, the nearest ones first."""
    rows = {row["path"]: row for row in rows_of(run(".", status=1, folder=folder)[0])}
    of_run = lambda name: [rows["./" + name]["run_" + kind] for kind in ("raw", "settings", "results")]
    guids = {row["guid"] for row in rows.values()} - {""}
    assert guids == {"0123"}, guids
    near = ["./a/b/run.vxd", "./a/b/run.vxs", ""]
    assert of_run("a/b/run.vxs") == near and of_run("a/b/run.vxd") == near, of_run("a/b/run.vxs")
    assert of_run("a/cut.vxd") == ["./a/cut.vxd", "./a/b/run.vxs", ""]
    assert of_run("a-1.vxd") == ["./a-1.vxd", "./a/b/run.vxs", ""]
    assert of_run("a/book.xls") == of_run("a/b/run.vxr") == ["", "", ""]
    two = folder.parent / "two"  # of two files of a run, the first one counts
    two.mkdir()
    for name, source in ("1.vxd", "small_example.vxd"), ("2.vxd", "small_example.vxd"), ("3.vxs", "xml/settings.vxs"):
        shutil.copyfile(REFERENCE / source, two / name)
    assert rows_of(run("two", status=0, folder=folder.parent)[0])[2]["run_raw"] == "two/1.vxd"


def check_changes(folder):
    """Files that vanish, appear and are replaced while they are read harm neither the others nor the exit status."""
    busy = folder.parent / "busy"
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
                (busy.parent / "new").write_bytes(sources[i % 2])
                os.replace(busy.parent / "new", path)
            else:
                path.unlink(missing_ok=True)

    thread = threading.Thread(target=change)
    thread.start()
    try:
        for jobs in "1", "3", "8":
            rows = {row["path"]: row for row in rows_of(run("busy", "-j", jobs, status=0, folder=busy.parent)[0])}
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
    odd = folder.parent / "odd"
    odd.mkdir()
    names = {b"m\xe4rz.vxd": "m\\xe4rz.vxd", b"m\\xe4rz.vxd": "m\\x5cxe4rz.vxd", "m\u00e4rz.vxd".encode(): "m\u00e4rz.vxd",
             b"new\nline \xff\xc3\xbc.vxd": "new\nline \\xff\u00fc.vxd"}
    for name in names:
        shutil.copyfile(REFERENCE / "small_example.vxd", os.fsencode(odd) + b"/" + name)
    expected = sorted("odd/" + text for text in names.values())
    rows = rows_of(run("odd", status=2, folder=odd.parent)[0])  # no name with a backslash can be opened
    assert sorted(row["path"] for row in rows) == expected, rows
    assert all(row["run_raw"] == (row["path"] if row["kind"] else "") for row in rows), rows
    items = [json.loads(line) for line in run("odd", "--jsonl", status=2, folder=odd.parent)[0].splitlines()]
    assert [item["path"] for item in items] == [row["path"] for row in rows]
    database = str(folder.parent / "odd.db")
    for read in 4, 1:  # the unreadable one is tried again
        assert f"4 files, {read} of them read now" in run(str(odd), "--sqlite", database, status=2)[1]
    assert sorted(path for path, in stored(database, "SELECT path FROM files")) == sorted(
        str(odd.parent / path) for path in expected)


def check_recordings(folder):
    rows = rows_of(run("z.dat", "a-1.vxd", status=0, folder=folder)[0])
    assert [row["path"] for row in rows] == ["a-1.vxd", "z.dat"], "sorted, however they were named"
    rows = rows_of(run(".", "--recordings", status=1, folder=folder)[0])
    assert {row["path"] for row in rows} == {"./" + name for name in FILES}, "files without recordings have a row, too"
    recordings = rows_of(run("a-1.vxd", "--recordings", status=0, folder=folder)[0])
    assert [(row["task"], row["number"], row["wells"], row["samples"], row["state"]) for row in recordings] == [
        ("CompoundTest", "1", "2", "8", "finished")], recordings


def stored(path, sql):
    with sqlite3.connect(path) as connection:
        return connection.execute(sql).fetchall()


def check_database(folder, database):
    options = (str(folder), "--sqlite", database)
    assert ", 13 of them read now" in run(*options, status=1)[1]
    found = stored(database, "SELECT path, kind, file_state FROM files ORDER BY path")
    assert found == [(str(folder / name), *FILES[name][2:]) for name in sorted(FILES)], found
    assert stored(database, "PRAGMA application_id") == [(0x56584341,)]
    assert stored(database, "PRAGMA user_version") == [(1,)]
    assert stored(database, "SELECT samples FROM recordings WHERE path LIKE '%a-1.vxd'") == [(8,)]
    assert stored(database, "PRAGMA integrity_check") == [("ok",)]
    assert stored(database, "SELECT settings FROM runs WHERE guid = '0123'") == [(str(folder / "a/b/run.vxs"),)]

    # A second run reads changed files and removes deleted ones.
    assert ", 0 of them read now" in run(*options, status=1)[1]
    shutil.copyfile(REFERENCE / "small_example.vxd", folder / "a/cut.vxd")
    (folder / "z.dat").unlink()
    assert "12 files, 1 of them read now" in run(*options, status=1)[1]
    assert stored(database, "SELECT file_state FROM files WHERE path LIKE '%/cut.vxd'") == [("finished",)]
    assert stored(database, "SELECT count(*) FROM files") == [(12,)]
    assert stored(database, "SELECT count(*) FROM recordings WHERE path NOT IN (SELECT path FROM files)") == [(0,)]

    # A file that could not be read is tried again: new rights change neither its size nor its time.
    with sqlite3.connect(database) as connection:
        connection.execute("UPDATE files SET file_state = 'unreadable' WHERE path LIKE '%/cut.vxd'")
    assert "12 files, 1 of them read now" in run(*options, status=1)[1]
    assert stored(database, "SELECT count(*) FROM files WHERE file_state = 'unreadable'") == [(0,)]

    # Neither of two folders removes the files of the other, not even if its name begins with that of the other.
    other = folder.parent / (folder.name + "-2")
    other.mkdir()
    shutil.copyfile(REFERENCE / "small_example.vxd", other / "one.vxd")
    run(str(other), "--sqlite", database, status=0)
    run(*options, status=1)
    assert stored(database, "SELECT count(*) FROM files") == [(13,)]

    # A folder that can't be looked into keeps its rows.
    away = folder.rename(folder.parent / "away")
    run(*options, status=2)
    assert stored(database, "SELECT count(*) FROM files") == [(13,)]
    away.rename(folder)

    # Newer and other databases are refused and unchanged.
    with sqlite3.connect(database) as connection:
        connection.execute("PRAGMA user_version = 2")
    before = pathlib.Path(database).read_bytes()
    assert "newer vxfile" in run(*options, status=2)[1]
    assert pathlib.Path(database).read_bytes() == before
    foreign = str(folder.parent / "foreign.db")
    with sqlite3.connect(foreign) as connection:
        connection.execute("CREATE TABLE t (x)")
    assert "another program" in run(str(folder), "--sqlite", foreign, status=2)[1]


def check_interruption(folder, database):
    """Ctrl-C leaves an existing database unchanged, and no new one."""
    many = folder.parent / "many"
    many.mkdir()
    for i in range(3000):
        shutil.copyfile(REFERENCE / "small_example.vxd", many / f"{i}.vxd")
    for path in database, str(folder.parent / "new.db"):
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
    root = pathlib.Path(top).resolve() / "plates"
    make(root)
    check_rows(root)
    check_runs(root)
    check_recordings(root)
    check_changes(root)
    if os.name == "posix":
        check_names(root)
    assert "'0' isn't a number of files from 1" in run(".", "-j", "0", status=2)[1]
    assert "--force excludes --sqlite" in run(".", "--sqlite", str(root.parent / "never.db"), "--force", status=2)[1]
    check_database(root, str(root.parent / "plates.db"))
    check_interruption(root, str(root.parent / "again.db"))
    assert run(str(root / "nowhere"), status=2)[1].startswith("vxfile: Can't look into the folder")
    (root / "none").mkdir()
    assert "no file of a known kind" in run(str(root / "none"), status=2)[1]

print("the catalogue agrees with the folder")
