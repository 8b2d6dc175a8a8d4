"""The working tree that faults are planted in."""
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent


def tracked_files(*patterns):
    listed = subprocess.run(["git", "ls-files", "-z", "--", *patterns], check=True,
                            capture_output=True, text=True, cwd=ROOT)
    return listed.stdout.rstrip("\0").split("\0")
