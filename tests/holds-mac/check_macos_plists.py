#!/usr/bin/env python3
"""Checks the macOS bundle's Info.plist template and the LaunchAgent.

Usage: check_macos_plists.py REPOSITORY_ROOT

The Info.plist template is filled in the way CMake fills it for kovi-holds;
both property lists must parse and agree with the identifiers in
KoviMacHolds/MacHoldsIdentity.h. The LaunchAgent's command is run with a
stand-in agent for each way the agent can end, to show that launchd (which
relaunches after a non-zero status of the command it runs) relaunches only
after the agent's status 75.
"""
import pathlib
import plistlib
import re
import subprocess
import sys
import tempfile

EXECUTABLE = "kovi-holds"


def identifiers(root):
    header = (root / "KoviMacHolds/MacHoldsIdentity.h").read_text()
    found = dict(re.findall(r'(kMacHolds\w+BundleID) = "([^"]+)"', header))
    return found["kMacHoldsMainAppBundleID"], found["kMacHoldsAgentBundleID"]


def filled_info_plist(root, agent):
    values = {
        "MACOSX_BUNDLE_BUNDLE_NAME": "Kovi Holds",
        "MACOSX_BUNDLE_EXECUTABLE_NAME": EXECUTABLE,
        "MACOSX_BUNDLE_GUI_IDENTIFIER": agent,
        "MACOSX_BUNDLE_SHORT_VERSION_STRING": "0.1.0",
        "MACOSX_BUNDLE_BUNDLE_VERSION": "0.1.0",
    }
    template = (root / "packaging/macos/Info.plist.in").read_text()
    unknown = set(re.findall(r"\$\{(\w+)\}", template)) - values.keys()
    expect(not unknown, f"Info.plist.in uses values CMake does not set: {sorted(unknown)}")
    text = re.sub(r"\$\{(\w+)\}", lambda match: values[match.group(1)], template)
    return plistlib.loads(text.encode())


def wrapper_status(arguments, agent_status):
    """The status launchd sees when the agent ends with `agent_status`
    (a negative value: killed by that signal)."""
    with tempfile.TemporaryDirectory() as scratch:
        stand_in = pathlib.Path(scratch) / "agent with spaces"
        ending = f"kill -{-agent_status} $$" if agent_status < 0 else f"exit {agent_status}"
        stand_in.write_text(f"#!/bin/sh\n{ending}\n")
        stand_in.chmod(0o755)
        # The shell reports a killed child on stderr; that is expected here.
        return subprocess.run(arguments[:-1] + [str(stand_in)], stderr=subprocess.DEVNULL).returncode


failures = []


def expect(condition, message):
    if not condition:
        failures.append(message)


def main():
    root = pathlib.Path(sys.argv[1])
    main_app, agent = identifiers(root)
    expect(agent == main_app + ".holds", f"the agent's identifier {agent} is not {main_app}.holds")

    info = filled_info_plist(root, agent)
    expect(info["CFBundleIdentifier"] == agent, "Info.plist: CFBundleIdentifier")
    expect(info["CFBundleExecutable"] == EXECUTABLE, "Info.plist: CFBundleExecutable")
    expect(info["CFBundlePackageType"] == "APPL", "Info.plist: CFBundlePackageType")
    expect(info.get("LSUIElement") is True, "Info.plist: LSUIElement must be true")

    job = plistlib.loads((root / f"packaging/macos/{agent}.plist").read_bytes())
    expect(job["Label"] == agent, "LaunchAgent: Label")
    expect(job.get("RunAtLoad") is True, "LaunchAgent: RunAtLoad")
    expect(job.get("KeepAlive") == {"SuccessfulExit": False}, "LaunchAgent: KeepAlive")
    expect(main_app in job.get("AssociatedBundleIdentifiers", []), "LaunchAgent: AssociatedBundleIdentifiers")
    arguments = job["ProgramArguments"]
    expect(arguments[-1].endswith(f"/Contents/Library/LoginItems/{EXECUTABLE}.app/Contents/MacOS/{EXECUTABLE}"),
           f"LaunchAgent: the agent is not inside the main app's LoginItems: {arguments[-1]}")

    endings = {0: "nothing left to hold", 1: "no desktop", 2: "usage error", 75: "executable replaced",
               -11: "crash (SIGSEGV)", -9: "killed (SIGKILL)"}
    for status, meaning in endings.items():
        relaunched = wrapper_status(arguments, status) != 0
        expect(relaunched == (status == 75),
               f"LaunchAgent: after {meaning} launchd would {'relaunch' if relaunched else 'not relaunch'} the agent")

    for failure in failures:
        print("FAIL:", failure)
    if not failures:
        print(f"{agent}: Info.plist and LaunchAgent agree; launchd relaunches only after status 75")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
