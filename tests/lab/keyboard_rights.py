"""Scenarios in which the user may not read keyboards, and polkit asks whether the key reader may.

Each leaves its facts for keyboard_rights_test.py.
"""

import contextlib
import os
import pathlib
import signal
import subprocess
import time

from virtual_desktop import processes, screens
from virtual_desktop.waiting import wait_until

import memory
from keyboard_device import KEY_A, PASSWORD, Keyboard
from keyboards import PAUSE, ActionLog, arm, devices
from lab_desktop import TIMEOUT
from logins import in_session
from seat import open_files, readers, settle

RETRY = 3.0
"""Seconds after which the effect checks its permission once more."""

OUTLIVED = 3.0
"""Seconds after which a reader without its program is killed."""

STATUS = ("Uid", "Gid", "Groups", "CapPrm", "CapEff", "CapAmb", "NoNewPrivs")


class Probe:
    """The probe program, run by the user without rights."""

    def __init__(self, seat, stack):
        self._process = processes.start(
            in_session(["/usr/bin/keyboard_probe"]), seat.env, stack, stdin=subprocess.PIPE,
            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.lines = processes.Lines(self._process.stdout)
        self._errors = processes.Lines(self._process.stderr)

    def finish(self):
        """Ends the probe; its status and output."""
        self._process.stdin.close()
        status = self._process.wait(TIMEOUT)
        self.lines.wait_for_end()
        self._errors.wait_for_end()
        return {"status": status, "lines": self.lines.text, "errors": self._errors.text}


def _run_probe(lab, name, seat, answer, scenario):
    """Plays `scenario(probe)` with the probe, one keyboard, and an agent that answers so."""
    with contextlib.ExitStack() as stack:
        Keyboard("lab keyboard one", stack)
        settle()
        agent = seat.agent(name, stack)
        agent.will(answer)
        probe = Probe(seat, stack)
        with lab.watch.timed():
            scenario(probe)
        lab.save(name, "probe.json", probe.finish() | {"asked": agent.log()})


def _refused(probe):
    probe.lines.wait_for(lambda line: line == "started", "the start", TIMEOUT)
    wait_until(lambda: probe.lines.text.count("trusted no") == 2, "the retry")
    time.sleep(1)


def _permitted(probe):
    probe.lines.wait_for(lambda line: line == "active yes", "the retry", TIMEOUT)


def _may(*command):
    """Whether a program of the user, in the same session, succeeds."""
    return subprocess.run(in_session(command), stdin=subprocess.DEVNULL, capture_output=True,
                          check=False).returncode == 0


def _rights(reader, keyboard):
    """What the reader may, and what the user's other programs may meanwhile."""
    lines = pathlib.Path(f"/proc/{reader}/status").read_text(encoding="ascii").splitlines()
    fields = dict(line.split(":\t", 1) for line in lines)
    limits = pathlib.Path(f"/proc/{reader}/limits").read_text(encoding="ascii").splitlines()
    return {
        "status": {field: fields[field].split() for field in STATUS},
        "files": open_files(reader),
        # The files there are the user's if the process can be dumped.
        "can_be_dumped": os.stat(f"/proc/{reader}/status").st_uid != 0,
        "core_limits": next(line.split()[4:6] for line in limits if "core file" in line),
        "others_may_read_the_node": _may("head", "--bytes=0", keyboard.path),
        "others_may_read_its_memory": _may("head", "--bytes=0", f"/proc/{reader}/mem"),
        "others_may_signal_it": _may("sh", "-c", f"kill -0 {reader}"),
    }


def _type_the_password(program, reader, keyboard):
    """What of it is in the memory of the program and of the reader."""
    wanted = memory.forms(PASSWORD, "hunter2")
    keyboard.type(PASSWORD, 0.1)
    return {"program": memory.search(program.pid, wanted),
            "reader": memory.search(reader, wanted)}


def _kill(program):
    """How long the reader outlives the program; no longer than OUTLIVED."""
    killed = time.monotonic()
    program.kill()
    while left := readers():
        if time.monotonic() - killed > OUTLIVED:
            for reader in left:
                os.kill(reader, signal.SIGKILL)
            break
        time.sleep(0.005)
    return time.monotonic() - killed


def granted(lab, name, seat):
    """The program asks, hears keys, and is killed with the keyboard open."""
    with contextlib.ExitStack() as stack:
        recording = lab.desktop.record(lab.folder(name) / "recorder.log", stack)
        agent = seat.agent(name, stack)
        agent.will("agree")
        keyboard = Keyboard("lab keyboard one", stack)
        settle()
        with seat.program(name, stack) as (program, facts):
            _, reader = arm(lab, program)
            facts["actions"] = []
            log = ActionLog(reader, facts["actions"])
            log.wait_until_heard(keyboard)
            time.sleep(PAUSE)
            with lab.watch.timed():
                log.do("stroke", lambda: keyboard.stroke(KEY_A))
            lab.save_sound(name, recording, facts)
            facts["devices_of_the_program"] = devices(program.pid)
            facts["rights"] = _rights(reader, keyboard)
            facts["kept"] = _type_the_password(program, reader, keyboard)
            with lab.watch.timed():
                facts["outlived_by"] = _kill(program)
            facts.update(asked=agent.log(), log=seat.log.lines)


def _ask(app, agent):
    """Switches the cracks on and waits for polkit's question."""
    before = len(agent.log())
    app.toggle(screens.KEYBOARD)
    wait_until(lambda: len(agent.log()) > before, "the question")


def withdrawn(lab, name, seat):
    """The control panel is left while the question is open; so is the program, after another."""
    with contextlib.ExitStack() as stack:
        agent = seat.agent(name, stack)
        Keyboard("lab keyboard one", stack)
        settle()
        with seat.program(name, stack) as (program, facts):
            app = screens.open_control_panel(lab.reader, program, TIMEOUT)
            _ask(app, agent)
            app.press(screens.LEAVE)
            wait_until(lambda: len(agent.log()) == 2, "the question to go")
            app.press(screens.ENTER, TIMEOUT)
            app.find(screens.LEAVE, timeout=TIMEOUT)
            _ask(app, agent)
            program.terminate()
            wait_until(lambda: len(agent.log()) == 4, "the question to go")
            facts["asked"] = agent.log()


def granted_late(lab, name, seat):
    """The user agrees when the effect no longer waits, and switches it on again."""
    with contextlib.ExitStack() as stack:
        agent = seat.agent(name, stack)
        keyboard = Keyboard("lab keyboard one", stack)
        settle()
        with seat.program(name, stack) as (program, facts):
            app = screens.open_control_panel(lab.reader, program, TIMEOUT)
            _ask(app, agent)
            time.sleep(RETRY + 1)
            while_asked = app.description(screens.KEYBOARD)
            agent.will("agree")
            wait_until(lambda: app.description(screens.KEYBOARD) != while_asked, "another hint")
            reader, = readers()
            facts.update(hint=app.description(screens.KEYBOARD), devices_before=devices(reader))
            app.toggle(screens.KEYBOARD)
            program.console.wait_for(lambda line: "Event tap started" in line, "armed", TIMEOUT)
            wait_until(lambda: keyboard.path in devices(reader), "the keyboard to be opened")
            facts.update(hint_at_last=app.description(screens.KEYBOARD), asked=agent.log())


def play_all(play, seat):
    """Calls `play(name, scenario, ...)` for every scenario of this file."""
    play("refused", _run_probe, seat, "refuse", _refused)
    play("permitted", _run_probe, seat, "agree", _permitted)
    for scenario in (granted, withdrawn, granted_late):
        play(scenario.__name__, scenario, seat)
