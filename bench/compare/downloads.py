"""What a user would do without the program: the same 447 reports with curl and gunzip."""

import datetime
import shlex
from urllib.parse import quote

from processes import Measured
from settings import account

# Type, days back from the last date, days from one report to the next.
TYPES = (("Daily", 365, 1), ("Weekly", 385, 7), ("Monhtly", 365, 28), ("Yearly", 3650, 365))


def requests(kind, span, step):
    """File name and form of each report."""
    last = datetime.date.today()
    if kind == "Weekly":
        last -= datetime.timedelta(days=last.isoweekday() % 7)
    user = account(0)
    for day in range(0, span + 1, step):
        date = (last - datetime.timedelta(days=span - day)).strftime("%Y%m%d")
        form = (
            f"USERNAME={quote(user['email'], safe='')}&PASSWORD={quote(quote(user['password']))}"
            f"&VNDNUMBER={user['vendorID']}&TYPEOFREPORT=Sales&DATETYPE={kind}&REPORTTYPE=Summary&REPORTDATE={date}"
        )
        yield f"{kind}_{date}.txt.gz", form


def curl_config(url, ca_file, kind, span, step):
    parts = [
        f'url = "{url}"\ncacert = "{ca_file}"\nhttp1.1\nsilent\nshow-error\ndata = "{form}"\noutput = "{name}"\n'
        for name, form in requests(kind, span, step)
    ]
    return "next\n".join(parts)


def url_of(build):
    return f"https://localhost:{build.service_port}/autoingestion.tft?"


def check(folder):
    count = len(list(folder.glob("*.txt")))
    if count != 447:
        raise SystemExit(f"curl brought {count} of 447 reports")


def four_curls(build, scratch):
    """Four curl processes, one a type, that keep their connections, and one gunzip. The cost of all."""
    folder = scratch.folder()
    commands = []
    for kind in TYPES:
        path = f"{folder}/{kind[0]}.conf"
        with open(path, "w", encoding="utf-8") as file:
            file.write(curl_config(url_of(build), build.ca_file, *kind))
        commands.append(["curl", "--disable", "--config", path])
    running = [Measured(command, directory=folder) for command in commands]
    costs = [process.end() for process in running]
    total = costs[0] + costs[1] + costs[2] + costs[3]
    names = [name for kind in TYPES for name, _ in requests(*kind)]
    total = total + Measured(["gunzip", "-k", *names], directory=folder).end()
    check(folder)
    return total


def shell_loop(build, scratch):
    """A shell script with one curl and one gunzip a report. The cost of all."""
    folder = scratch.folder()
    path = f"{folder}/loop.sh"
    with open(path, "w", encoding="utf-8") as file:
        file.write("set -e\n")
        for kind in TYPES:
            for name, form in requests(*kind):
                file.write(
                    f"curl -q --http1.1 -sS --cacert {shlex.quote(build.ca_file)} -d {shlex.quote(form)} "
                    f"-o {name} {shlex.quote(url_of(build))}\ngunzip {name}\n"
                )
    cost = Measured(["sh", path], directory=folder).end()
    check(folder)
    return cost
