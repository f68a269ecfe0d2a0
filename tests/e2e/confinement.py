#!/usr/bin/env python3
"""Runs the companion, and checks its system calls and those of the editor, on files that strangers could have made.

  confinement.py make FOLDER            writes the files into FOLDER
  confinement.py companion BIN FOLDER   runs every command of vmk on them
  confinement.py check LOG ALLOWED...   checks a log of strace: all writes are below the folders ALLOWED

A program opens no connection except to the display on this machine, starts no other program, and neither writes,
renames nor removes anything outside its folders.
"""

import os
import re
import subprocess
import sys
import zipfile

CALLS = ("execve,execveat,socket,connect,bind,sendto,open,openat,openat2,creat,rename,renameat,renameat2,link,linkat,"
         "symlink,symlinkat,unlink,unlinkat,mkdir,mkdirat,rmdir,truncate,chmod,fchmodat,chown,lchown,fchownat,mknod,"
         "mknodat,utimensat,setxattr")
STRACE = ["strace", "-f", "-qq", "-y", "-s", "4096", "-e", "trace=" + CALLS, "-o"]

DECLARATION = '<?xml version="1.0" encoding="utf-8"?>\n'
BOOK_START = '<FictionBook xmlns="http://www.gribuser.ru/xml/fictionbook/2.0" xmlns:l="http://www.w3.org/1999/xlink"'
BODY = ('><description><title-info><lang>en</lang></title-info></description><body><section><p>Some words, a mistacke.</p>'
        "<image l:href='#../../outside/picture.png'/><image l:href='http://127.0.0.1:9/p.png'/>"
        "<image l:href='file:///OUTSIDE/secret'/></section></body>"
        '<binary id="../../outside/picture.png" content-type="image/png">QUJD</binary>'
        '<binary id="/OUTSIDE/picture.png" content-type="image/png">QUJD</binary>'
        '<binary id="`touch x`;$(touch y)|touch z" content-type="image/png; charset=`touch x`">QUJD</binary>'
        "</FictionBook>")


def books(outside):
    book = DECLARATION + BOOK_START + BODY
    yield "plain.fb2", book
    yield "doctype.fb2", book.replace("\n", '\n<!DOCTYPE FictionBook SYSTEM "http://127.0.0.1:9/book.dtd">\n', 1)
    yield "local-doctype.fb2", book.replace("\n", '\n<!DOCTYPE FictionBook SYSTEM "file:///OUTSIDE/book.dtd">\n', 1)
    yield "entities.fb2", book.replace(
        "\n", '\n<!DOCTYPE FictionBook [<!ENTITY a SYSTEM "file:///OUTSIDE/secret"><!ENTITY b SYSTEM '
        '"http://127.0.0.1:9/x"><!ENTITY % c SYSTEM "http://127.0.0.1:9/y">%c;]>\n', 1).replace("Some", "&a;&b;Some")
    yield "location.fb2", book.replace(
        BOOK_START, BOOK_START + ' xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance" xsi:schemaLocation='
        '"http://www.gribuser.ru/xml/fictionbook/2.0 http://127.0.0.1:9/book.xsd"')
    yield "style.fb2", book.replace("\n", '\n<?xml-stylesheet type="text/xsl" href="http://127.0.0.1:9/x.xsl"?>\n', 1)
    yield "include.fb2", book.replace(
        "<p>", '<xi:include xmlns:xi="http://www.w3.org/2001/XInclude" href="file:///OUTSIDE/secret"/><p>', 1)
    yield "page.fb2", book.replace(
        "Some", "&lt;script>x&lt;/script>&lt;img src='http://127.0.0.1:9/i.png'> <a l:href='http://127.0.0.1:9/'>a</a>")


def make(folder):
    outside = os.path.join(folder, "outside")
    os.makedirs(os.path.join(outside, "inner"))
    for name in ("secret", "book.dtd", "inner/secret", "tags"):
        with open(os.path.join(outside, name), "w", encoding="utf-8") as file:
            file.write("SECRET " + name + "\n")
    os.makedirs(os.path.join(folder, "books"))
    for name, text in books(outside):
        with open(os.path.join(folder, "books", name), "w", encoding="utf-8") as file:
            file.write(text.replace("/OUTSIDE", outside))
    with zipfile.ZipFile(os.path.join(folder, "books", "archive.zip"), "w") as archive:
        text = DECLARATION + BOOK_START + BODY
        archive.writestr("../../outside/up.fb2", text)
        archive.writestr(outside + "/absolute.fb2", text)
        link = zipfile.ZipInfo("link.fb2")
        link.external_attr = 0o120777 << 16
        link.create_system = 3
        archive.writestr(link, outside + "/secret")
    # The signature of a table is made of a code page, see CleanUpTable.h.
    rows = ["VMKCleanUpFile\u00e9\u00fe", "whole book", "1", "words", "`touch x` file:///", "0", "0", "1"]
    with open(os.path.join(folder, "table.dat"), "wb") as file:
        file.write("".join(row + "\r" for row in rows).encode("utf-16-le"))
    schema = ('<xs:schema xmlns:xs="http://www.w3.org/2001/XMLSchema" targetNamespace='
              '"http://www.gribuser.ru/xml/fictionbook/2.0">{}<xs:element name="FictionBook"/></xs:schema>')
    for name, part in (("import", '<xs:import namespace="x" schemaLocation="http://127.0.0.1:9/x.xsd"/>'),
                       ("include", '<xs:include schemaLocation="http://127.0.0.1:9/x.xsd"/>')):
        with open(os.path.join(folder, name + ".xsd"), "w", encoding="utf-8") as file:
            file.write(schema.format(part))


def state_of(folder):
    """The names, contents and times of all files below a folder."""
    state = {}
    for path, _, names in os.walk(folder):
        for name in names + ["."]:
            full = os.path.join(path, name)
            status = os.lstat(full)
            content = open(full, "rb").read() if os.path.isfile(full) else b""
            state[full] = (status.st_mode, status.st_mtime_ns, content)
    return state


def path_of(call, cwd):
    """The paths that a call names, made absolute."""
    for folder, path in re.findall(r'(?:(?:AT_FDCWD|\d+)<([^>]*)>, )?"((?:[^"\\]|\\.)*)"', call):
        yield os.path.normpath(os.path.join(folder or cwd, path.encode().decode("unicode_escape")))


def check(log, allowed):
    """Returns the number of changes in a log, and the calls that are not allowed."""
    faults = []
    programs = 0
    changes = 0
    # Devices, and memory that has a name.
    harmless = ("/dev/null", "/dev/tty", "/dev/shm/", "/proc/self/", "/memfd:", "/dev/dri/")
    for line in open(log, encoding="utf-8", errors="replace"):
        call = re.sub(r"^\d+ +", "", line.rstrip())
        name = call.split("(", 1)[0]
        if name in ("execve", "execveat"):
            # The program itself is the first.
            programs += 0 if " = -1 " in call else 1
            if programs > 1:
                faults.append(call)
        elif name in ("socket", "connect", "bind", "sendto"):
            if re.search(r"AF_(INET6?|PACKET|VSOCK|BLUETOOTH)|TCP|UDP", call):
                faults.append(call)
        elif name in ("open", "openat", "openat2") and not re.search(r"O_(WRONLY|RDWR|CREAT|TRUNC|APPEND)", call):
            continue
        elif re.match(r"[a-z0-9]+\(", call) and " = -1 " not in call:
            changes += 1
            for path in path_of(call, os.getcwd()):
                inside = any(path == folder or path.startswith(folder + "/") for folder in allowed)
                if not inside and not path.startswith(harmless):
                    faults.append(call)
    if programs == 0:
        faults.append("no program was started")
    return changes, faults


def companion(binaries, folder):
    office = os.path.join(folder, "program")
    vmk = os.path.join(office, "vmk")
    out = os.path.join(folder, "out")
    os.makedirs(out, exist_ok=True)
    table = os.path.join(folder, "table.dat")
    inputs = [os.path.join(folder, "books", name) for name in sorted(os.listdir(os.path.join(folder, "books")))]
    commands = []
    for path in inputs:
        commands += [["validate", path], ["validate", "--all-errors", path], ["display", path],
                     ["find", "words", path], ["images", path], ["images", path, "--out", out],
                     ["spell", path], ["clean", path, "--table", table, "--out-dir", out],
                     ["convert", path, "--out-dir", out], ["versions", path]]
    for name in ("import", "include"):
        commands.append(["validate", "--schema", os.path.join(folder, name + ".xsd"), inputs[0]])
    commands += [["convert", os.path.join(folder, "books"), "--out-dir", out],
                 ["convert", inputs[-1], "--out", inputs[-1]], ["versions", inputs[-1]], ["recover"]]
    before = state_of(os.path.join(folder, "outside"))
    outcomes = {}
    all_changes = 0
    failed = False
    log = os.path.join(folder, "companion.log")
    for command in commands:
        run = subprocess.run(STRACE + [log, vmk, *command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        outcomes[run.returncode] = outcomes.get(run.returncode, 0) + 1
        allowed = [out, office, os.path.join(folder, "home")]
        if command[-2:] == ["--out", *command[1:2]]:
            allowed.append(os.path.dirname(command[1]))
        changes, faults = check(log, allowed)
        all_changes += changes
        if run.returncode not in (0, 1, 2):
            faults.append(f"ended with {run.returncode}: {run.stdout[-300:]!r}")
        if b"SECRET" in run.stdout:
            faults.append("shows a file outside")
        for fault in faults:
            print("FAILED:", command, fault)
        failed = failed or bool(faults)
    if state_of(os.path.join(folder, "outside")) != before:
        print("FAILED: files outside have changed")
        failed = True
    for path, _, names in os.walk(out):
        for name in names:
            full = os.path.join(path, name)
            if os.path.islink(full) or b"SECRET" in open(full, "rb").read():
                print("FAILED: a result leads outside:", full)
                failed = True
    print(f"companion: {len(commands)} commands, {all_changes} changes of files, exit codes: {outcomes}")
    return 1 if failed or all_changes == 0 or outcomes.get(0, 0) < len(inputs) * 5 else 0


def main():
    if sys.argv[1] == "make":
        make(sys.argv[2])
        return 0
    if sys.argv[1] == "companion":
        return companion(sys.argv[2], sys.argv[3])
    changes, faults = check(sys.argv[2], sys.argv[3:])
    print(f"{changes} changes of files")
    if changes == 0:
        faults.append("no change was recorded")
    for fault in faults:
        print("FAILED:", fault)
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
