"""Translation catalogues (PO files) without plural forms and contexts, which no text of ours has."""

import re
from dataclasses import dataclass, field

_ESCAPES = {"\\": "\\\\", '"': '\\"', "\n": "\\n", "\t": "\\t", "\r": "\\r"}
_UNESCAPED = {"n": "\n", "t": "\t", "r": "\r", '"': '"', "\\": "\\"}


class CatalogueError(Exception):
    """A line that is not understood; its text names file and line."""


@dataclass
class Entry:
    """One text; the entry with the empty key is the catalogue's header."""

    key: str
    translation: str = ""
    comments: list[str] = field(default_factory=list)
    files: list[str] = field(default_factory=list)
    flags: list[str] = field(default_factory=list)
    is_obsolete: bool = False


def quoted(text):
    return '"' + "".join(_ESCAPES.get(character, character) for character in text) + '"'


def unescaped(text):
    return re.sub(r"\\(.)", lambda match: _UNESCAPED.get(match[1], match[0]), text)


def _write_text(keyword, text):
    lines = text.splitlines(keepends=True)
    if len(lines) < 2:
        return [f"{keyword} {quoted(text)}"]
    return [f'{keyword} ""'] + [quoted(line) for line in lines]


def write_entry(entry):
    lines = [f"#. {comment}" for comment in entry.comments]
    lines += [f"#: {file}" for file in entry.files]
    if entry.flags:
        lines.append("#, " + ", ".join(entry.flags))
    lines += _write_text("msgid", entry.key)
    lines += _write_text("msgstr", entry.translation)
    return "\n".join(lines) + "\n"


def read(path):
    """All entries of the file, the header and those that are obsolete included."""
    entries = []
    current, part = Entry(""), None
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        is_obsolete = line.startswith("#~")
        line = line.removeprefix("#~").strip()
        if line.startswith("#"):
            if part == "msgstr":
                current, part = Entry(""), None
            if line.startswith("#."):
                current.comments.append(line[2:].strip())
            if line.startswith("#,"):
                current.flags += [flag.strip() for flag in line[2:].split(",")]
            continue
        if not line or line.startswith("|"):
            continue
        match = re.fullmatch(r'(?:(msgid|msgstr)\s+)?"((?:[^"\\]|\\.)*)"', line)
        if not match or (match[1] or part) is None:
            raise CatalogueError(f"{path}:{number}: not understood: {line}")
        if match[1] == "msgid":
            if part == "msgstr":
                current = Entry("")
            current.is_obsolete = is_obsolete
            entries.append(current)
        part = match[1] or part
        if part == "msgid":
            current.key += unescaped(match[2])
        else:
            current.translation += unescaped(match[2])
    return entries
