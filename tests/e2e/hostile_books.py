#!/usr/bin/env python3
"""Runs vmk on generated hostile books. Each takes at most a small multiple of the processor time and the memory that
a plain book of 4 MB takes (or of its own size, if it is larger), writes at most a small multiple of its size, and is
not a crash.

  hostile_books.py BIN_FOLDER

Returns 77 (skipped) if the companion is not built.
"""

import os
import resource
import signal
import sys
import tempfile

# What the parser may expand in a book of any size; see XmlMaxEntityExpansion.
ALLOWANCE = 4_000_000
# A run that does not end is a failure.
MOST_SECONDS = 60
MOST_TIME = 4
MOST_MEMORY = 3
MOST_OUTPUT = 20
DECLARATION = '<?xml version="1.0" encoding="utf-8"?>\n'
PARAGRAPH = "<p>A paragraph of <b>plain</b> text.</p>\n"
COMMANDS = [["validate"], ["validate", "--against", "namespace"], ["display"], ["images"]]


def numbered(count, form):
    return "".join(form.format(i) for i in range(count))


def with_type(declarations, body="<a/>"):
    return f"{DECLARATION}<!DOCTYPE a [{declarations}]>\n{body}"


def elements(count, name="a"):
    return "<a>" + f"<{name}/>" * count + "</a>"


def hostile_books():
    yield "a large default value", with_type(f'<!ATTLIST p b CDATA "{"x" * 100_000}">', elements(20_000, "p"))
    many = "<!ATTLIST a" + numbered(900, ' b{} CDATA "x"') + ">"
    yield "many default values", with_type(many, elements(5_000))
    yield "default values in an entity", with_type(many + f"<!ENTITY e '{'<a/>' * 1_500}'>", "<a>" + "&e;" * 50 + "</a>")
    spaces = "<!ATTLIST a" + numbered(900, ' xmlns:b{} CDATA "x"') + ">"
    yield "many default namespaces", with_type(spaces, elements(5_000))
    names = "|".join(f"v{i}" for i in range(120_000))
    yield "a long enumeration", with_type(f'<!ATTLIST a b ({names}) "v0">')
    yield "a long notation", with_type(f'<!ATTLIST a b NOTATION ({names}) "v0">')
    yield "duplicate alternatives", with_type('<!ATTLIST a b (x|x) "x">')
    yield "many entities", with_type(numbered(100_000, '<!ENTITY e{} "x">\n'))
    yield "many notations", with_type(numbered(30_000, '<!NOTATION n{} SYSTEM "x">\n'))
    laughs = '<!ENTITY e0 "lol">' + "".join(f'<!ENTITY e{i} "{f"&e{i - 1};" * 10}">' for i in range(1, 10))
    yield "nested entities", with_type(laughs, "<a>&e9;</a>")
    yield "many attributes", DECLARATION + "<a" + numbered(100_000, ' b{}="x"') + "/>"
    yield "many tags with attributes", DECLARATION + "<a>" + ("<p" + numbered(1_000, ' b{}="x"') + "/>") * 50 + "</a>"
    yield "many namespaces", DECLARATION + "<a" + numbered(100_000, ' xmlns:b{}="x"') + "/>"
    yield "deep elements", DECLARATION + "<a>" * 200_000
    yield "open tags", DECLARATION + "<" * 500_000
    yield "references", DECLARATION + "<a>" + "&#65;" * 200_000 + "</a>"
    yield "comments", DECLARATION + "<a>" + "<!---->" * 100_000 + "</a>"
    yield "sections", DECLARATION + "<a>" + "<![CDATA[]]>" * 50_000 + "</a>"
    yield "two open tags", DECLARATION + "<a><<binary id='b'></a>"
    yield "line ends", DECLARATION + "<a>" + "\n" * 500_000 + "</a>"


def run(program, arguments, limit):
    """Returns processor time, peak memory (bytes), size of the output, and the status of a child process."""
    with tempfile.TemporaryFile() as out:
        child = os.fork()
        if child == 0:
            resource.setrlimit(resource.RLIMIT_CPU, (limit, limit))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_FSIZE, (200_000_000, 200_000_000))
            os.dup2(out.fileno(), 1)
            os.dup2(out.fileno(), 2)
            os.execv(program, [program, *arguments])
        _, status, usage = os.wait4(child, 0)
        written = out.seek(0, os.SEEK_END)
    return usage.ru_utime + usage.ru_stime, usage.ru_maxrss * 1024, written, status


def main():
    program = os.path.join(sys.argv[1], "vmk")
    if not os.access(program, os.X_OK):
        print("skipped: vmk is not built")
        return 77
    failures = []
    with tempfile.TemporaryDirectory() as folder:
        book = os.path.join(folder, "book.fb2")

        def figures_of(command, text):
            with open(book, "w", encoding="utf-8") as file:
                file.write(text)
            return run(program, [*command, book], MOST_SECONDS)

        plain = f"{DECLARATION}<a>{PARAGRAPH * (ALLOWANCE // len(PARAGRAPH))}</a>"
        # Against the schema, reading would end at the first element.
        references = [figures_of(["validate", "--against", "namespace"], plain) for _ in range(2)]
        references += [figures_of(command, plain) for command in COMMANDS[2:]]
        for name, text in hostile_books():
            size = max(1, len(text) / ALLOWANCE)
            for command, (plain_time, plain_memory, _, _) in zip(COMMANDS, references):
                time, memory, written, status = figures_of(command, text)
                figures = (
                    f"time {time / plain_time / size:.2f}, memory {memory / plain_memory / size:.2f}, "
                    f"output {written / len(text):.1f}"
                )
                print(f"{name}: {' '.join(command)}: {figures}")
                good = (
                    os.WIFEXITED(status)
                    and os.WEXITSTATUS(status) in (0, 1, 2)
                    and time <= MOST_TIME * plain_time * size
                    and memory <= MOST_MEMORY * plain_memory * size
                    and written <= MOST_OUTPUT * len(text) + 100_000
                )
                if not good:
                    ended = signal.Signals(os.WTERMSIG(status)).name if os.WIFSIGNALED(status) else os.WEXITSTATUS(status)
                    failures.append(f"{name}: {' '.join(command)}: {figures}, ended with {ended}")
    for failure in failures:
        print("FAILED:", failure)
    return 1 if failures else 0


sys.exit(main())
