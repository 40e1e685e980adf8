"""The pictures in Docs: the shop on a phone and on a desktop, light and dark."""

import argparse
import multiprocessing
import pathlib
import subprocess
import sys
import tempfile

from journey import link, pay_small
from robot import Robot, Stuck

PHONE, DESKTOP = (360, 640), (1280, 800)


def take(program, folder, size, dark):
    """The pictures of one way from the menu to the receipt."""
    with Robot(program, folder, size, dark) as robot:
        link(robot)
        pay_small(robot)
    return [next(folder.glob(f"*-{name}.png"))
            for name in ("menu", "link", "activation", "wallet", "receipt")]


def apart(*arguments):
    """In a process of its own: what reads the widgets knows one session bus in each."""
    with multiprocessing.Pool(1) as once:
        return once.apply(take, arguments)


def save(pictures, path):
    """One picture of several side by side, in few colours."""
    gap = "+0+0" if len(pictures) == 1 else "+8+8"
    sheet = subprocess.run(
        ["montage", *pictures, "-tile", f"{len(pictures)}x1", "-geometry", gap,
         "-background", "#8f8579", "png:-"], check=True, stdout=subprocess.PIPE).stdout
    small = subprocess.run(["pngquant", "--speed", "1", "--strip", "-"], input=sheet, check=True,
                           stdout=subprocess.PIPE).stdout
    path.write_bytes(small)
    print(path)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program", help="the corner-coffee to use")
    parser.add_argument("docs", type=pathlib.Path, help="the folder to leave the pictures in")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        for dark, style in ((False, "light"), (True, "dark")):
            work = pathlib.Path(folder) / style
            save(apart(options.program, work / "phone", PHONE, dark),
                 options.docs / f"shop-phone-{style}.png")
            menu, _, browser, *_ = apart(options.program, work / "desktop", DESKTOP, dark)
            save([menu], options.docs / f"shop-desktop-{style}.png")
            save([browser], options.docs / f"shop-desktop-browser-{style}.png")


if __name__ == "__main__":
    try:
        main()
    except Stuck as problem:
        sys.exit(f"screenshots: {problem}")
