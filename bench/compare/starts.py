"""From the start of a program to its first window on the screen."""

import settings
from processes import Measured
from surroundings import Home


def start(program, screen, scratch):
    with Home(scratch) as home:
        settings.write(home.settings_file, 1)
        environment = {**home.environment, "QT_QPA_PLATFORM": "xcb", "DISPLAY": screen.name}
        return Measured([program], environment).end()
