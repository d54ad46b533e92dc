#!/usr/bin/env python3
"""Tells what is wrong with the catalogue of texts and its translations, one line each; status 1 when something is.

check.py [ROOT]    the folder with src/ and po/, by default this project's
"""

import pathlib
import re
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from catalogue import CatalogueError, read
from extract import catalogue_text
from source_texts import SourceError

_PERCENT = re.compile(r"%(?:%|(?:(\d+)\$)?((?:\.\d+)?[@if]))?")


def directives(text):
    """What a format takes, as sorted (position, kind), and whether each percent sign belongs to a directive."""
    taken = []
    unnumbered = 0
    is_clean = True
    for match in _PERCENT.finditer(text):
        if match[0] == "%":
            is_clean = False
        if not match[2]:
            continue
        unnumbered += match[1] is None
        taken.append((int(match[1] or unnumbered), match[2]))
    return sorted(taken), is_clean


def mnemonics(text):
    return text.replace("&&", "").count("&")


def problems_of_text(entry, translation):
    """What is wrong with the translation of the catalogue's entry."""
    if translation is None:
        return ["missing"]
    if "fuzzy" in translation.flags:
        return ["marked fuzzy"]
    text = translation.translation
    if not text:
        return ["not translated"]
    problems = []
    expected, _ = directives(entry.key)
    actual, is_clean = directives(text)
    is_format = "objc-format" in entry.flags
    if is_format and (actual != expected or not is_clean):
        problems.append("takes other arguments than the English text")
    if mnemonics(text) != mnemonics(entry.key):
        problems.append("has not the mnemonic (&) of the English text")
    if entry.key.endswith("...") != text.endswith("..."):
        problems.append("differs in the ... at the end")
    if any("Do not translate." in comment for comment in entry.comments) and text != entry.key:
        problems.append("must stay as it is")
    return problems


def problems_of_translation(catalogue, path):
    try:
        translated = read(path)
    except (OSError, CatalogueError) as error:
        return [str(error)]
    problems = []
    by_key = {entry.key: entry for entry in translated if not entry.is_obsolete}
    for entry in catalogue:
        if entry.key:
            problems += [f"{path.name}: {what}: {entry.key!r}" for what in problems_of_text(entry, by_key.get(entry.key))]
    keys = {entry.key for entry in catalogue}
    problems += [f"{path.name}: stale: {entry.key!r}" for entry in translated if entry.is_obsolete or entry.key not in keys]
    tool = subprocess.run(
        ["msgfmt", "--check", "--check-accelerators", "--output-file=/dev/null", str(path)],
        capture_output=True, text=True, check=False,
    )
    # Warnings, which do not change the status, count as well.
    return problems + tool.stderr.splitlines()


def problems_of_project(root):
    folder = root / "po"
    template = folder / "corvane.pot"
    languages = (folder / "LINGUAS").read_text(encoding="utf-8").split()
    strays = sorted(path.name for path in folder.glob("*.po") if path.stem not in languages)
    problems = [f"{name}: not in LINGUAS" for name in strays]
    try:
        if template.read_text(encoding="utf-8") != catalogue_text(root):
            problems.append(f"{template.name}: not up to date; run scripts/update-translations.sh")
        catalogue = read(template)
    except (OSError, CatalogueError, SourceError) as error:
        return problems + [str(error)]
    for language in languages:
        problems += problems_of_translation(catalogue, folder / f"{language}.po")
    return problems


def main():
    default_root = pathlib.Path(__file__).resolve().parent.parent.parent
    problems = problems_of_project(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default_root)
    print("\n".join(problems), end="\n" if problems else "", file=sys.stderr)
    sys.exit(1 if problems else 0)


if __name__ == "__main__":
    main()
