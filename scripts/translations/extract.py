#!/usr/bin/env python3
"""Writes the catalogue of all texts in src/ to standard output. scripts/update-translations.sh puts it in place."""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from catalogue import Entry, write_entry
from source_texts import SourceError, texts_of_folder

# Without the date of extraction: the catalogue changes when a text does, and only then. msginit fills in the rest.
HEADER = Entry(
    "",
    "Project-Id-Version: corvane\n"
    "PO-Revision-Date: YEAR-MO-DA HO:MI+ZONE\n"
    "Last-Translator: FULL NAME <EMAIL@ADDRESS>\n"
    "Language-Team: LANGUAGE <LL@li.org>\n"
    "Language: \n"
    "MIME-Version: 1.0\n"
    "Content-Type: text/plain; charset=UTF-8\n"
    "Content-Transfer-Encoding: 8bit\n",
)


def catalogue_text(root):
    """The whole catalogue of the sources below `root`/src."""
    entries = texts_of_folder(root / "src", root)
    title = "# The texts of Corvane, collected by scripts/update-translations.sh.\n"
    return title + "\n".join(write_entry(entry) for entry in [HEADER] + entries)


def main():
    root = pathlib.Path(__file__).resolve().parent.parent.parent
    try:
        sys.stdout.write(catalogue_text(root))
    except SourceError as error:
        sys.exit(str(error))


if __name__ == "__main__":
    main()
