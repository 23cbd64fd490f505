"""Which namespaces a test may make here: root in a container often may make none."""

import os
import shutil
import subprocess


def can_unshare(*options):
    """Whether a program runs in namespaces of its own of these kinds; for root alone, as mounting in them is."""
    if os.geteuid() != 0 or shutil.which("unshare") is None:
        return False
    return subprocess.run(["unshare", *options, "true"], capture_output=True, check=False).returncode == 0
