"""Finds the texts that the program looks up: localizedString("text", "comment for translators").

Extractors such as xgettext do not know a comment that is an argument. Both arguments have to be literals, so that
nothing is missed. A comment in the source that begins with "Translators:" is handed on to the translators as well when
it stands in the same statement or directly above it.
"""

import re
from dataclasses import dataclass

from catalogue import Entry, unescaped

_TOKEN = re.compile(
    r"""
    (?P<blank>\s+)
  | (?P<note>//[^\n]*(?:\n[ \t]*//[^\n]*)*)
  | (?P<comment>/\*.*?\*/)
  | (?:u8|[uUL])?R"(?P<fence>[^()\s\\]*)\((?P<raw>.*?)\)(?P=fence)"
  | (?:u8|[uUL])?"(?P<text>(?:[^"\\\n]|\\.)*)"
  | (?P<character>(?:u8|[uUL])?'(?:[^'\\\n]|\\.)+')
  | (?P<number>\.?\d(?:'?[\w.])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign>.)
    """,
    re.VERBOSE | re.DOTALL,
)
_FORMAT = re.compile(r"%(?:\d+\$)?(?:\.\d+)?[@if]")


class SourceError(Exception):
    """A call that cannot be understood; its text names file and line."""


@dataclass
class _Token:
    kind: str  # "text" for literals of both kinds, "note" for // comments, "word", "sign", ...
    value: str
    line: int


def _tokens(source):
    line = 1
    for match in _TOKEN.finditer(source):
        kind, value = match.lastgroup, match[0]
        if match["raw"] is not None:
            kind, value = "text", match["raw"]
        elif kind == "text":
            value = unescaped(match["text"])
        if kind not in ("blank", "comment"):
            yield _Token(kind, value, line)
        line += match[0].count("\n")


def _literal(tokens, index):
    """The literal at that place, adjacent ones joined, and the index after it; None when there is none."""
    start = index
    text = ""
    while tokens[index].kind == "text":
        text += tokens[index].value
        index += 1
    return (text if index > start else None), index


def _translators_note(value):
    text = " ".join(line.strip().lstrip("/").strip() for line in value.splitlines())
    _, mark, note = text.partition("Translators:")
    return note.strip() if mark else None


def texts_of_source(source, name):
    """A list of (key, comments) in the order of the source; `name` stands in errors."""
    end = _Token("end", "", 0)
    tokens = list(_tokens(source)) + [end]
    code = [token for token in tokens if token.kind != "note"] + [end] * 4
    notes = {}  # by the index in `code` of what follows
    position = 0
    for token in tokens:
        if token.kind != "note":
            position += 1
        elif note := _translators_note(token.value):
            notes[position] = note

    found = []
    note = None
    for index, token in enumerate(code[:-5]):
        note = notes.get(index, None if token.value == ";" and token.kind == "sign" else note)
        if token.kind != "word" or token.value != "localizedString" or code[index + 1].value != "(":
            continue
        if [word.value for word in code[index + 2 : index + 5]] == ["std", ":", ":"]:
            continue  # the declaration, whose parameters are of types of std
        key, after_key = _literal(code, index + 2)
        comment, after_comment = _literal(code, after_key + 1)
        is_call = code[after_key].value == "," and code[after_comment].value == ")"
        if key is None or comment is None or not is_call:
            raise SourceError(f"{name}:{token.line}: text and comment have to be literals")
        if not key or not comment:
            raise SourceError(f"{name}:{token.line}: text or comment is empty")
        found.append((key, [comment] + ([note] if note else [])))
    return found


def texts_of_folder(folder, root):
    """One entry for each text below the folder, with all its comments, in the order of files and lines."""
    entries = {}
    for path in sorted(path for path in folder.rglob("*") if path.suffix in (".cpp", ".h")):
        name = path.relative_to(root).as_posix()
        for key, comments in texts_of_source(path.read_text(encoding="utf-8"), name):
            entry = entries.setdefault(key, Entry(key))
            entry.comments += [comment for comment in comments if comment not in entry.comments]
            if name not in entry.files:
                entry.files.append(name)
            # The nearest kind of format that the gettext tools know: it has %@, too.
            if _FORMAT.search(key):
                entry.flags = ["objc-format"]
    return list(entries.values())
