"""The sessions at the machine's seat, as logind tells of them: in files and on the system bus."""

import pathlib
import pwd
import subprocess

from virtual_desktop.buses import Services

USER = pwd.getpwnam("nobody")
OTHER_USER = pwd.getpwnam("games")
SESSIONS = {"c1": USER, "c2": OTHER_USER}

_STATE = pathlib.Path("/run/systemd")
_CGROUPS = pathlib.Path("/sys/fs/cgroup")


def _replace(folder, name, **values):
    # logind replaces its files, too: who watches the folder is told of the new one.
    text = "".join(f"{key}={value}\n" for key, value in values.items())
    new = _STATE / folder / f".#{name}"
    new.write_text(text, encoding="ascii")
    new.rename(_STATE / folder / name)


def _if(condition, value):
    return value if condition else ""


def members(session):
    """The list of the processes in the session; writing one to it moves that there."""
    user = SESSIONS[session].pw_uid
    return _CGROUPS / f"user.slice/user-{user}.slice/session-{session}.scope/cgroup.procs"


class Logins:
    """Two users' sessions on seat0, of which one at most is active."""

    def __init__(self, env, bus, stack):
        for folder in ("seats", "sessions", "users", "machines"):
            (_STATE / folder).mkdir(parents=True, exist_ok=True)
        subprocess.run(["mount", "-t", "cgroup2", "cgroup2", _CGROUPS], check=True)
        for session in SESSIONS:
            members(session).parent.mkdir(parents=True)
        self.activate("c1")
        self._services = Services(env, bus, stack, ["login", *map("session:{}".format, SESSIONS)])

    def activate(self, active):
        """Brings this session to the foreground, none for None."""
        for session, user in SESSIONS.items():
            is_active = session == active
            state = "active" if is_active else "online"
            _replace("sessions", session, UID=user.pw_uid, USER=user.pw_name, IS_DISPLAY=1,
                     ACTIVE=int(is_active), STATE=state, REMOTE=0, TYPE="wayland", CLASS="user",
                     SCOPE=f"session-{session}.scope", SEAT="seat0")
        _replace("seats", "seat0", IS_SEAT0=1, CAN_GRAPHICAL=1, ACTIVE=active or "",
                 ACTIVE_UID=_if(active, SESSIONS.get(active, USER).pw_uid),
                 SESSIONS=" ".join(SESSIONS))
        for session, user in SESSIONS.items():
            is_active = session == active
            _replace("users", str(user.pw_uid), NAME=user.pw_name, DISPLAY=session,
                     STATE="active" if is_active else "online", SESSIONS=session, SEATS="seat0",
                     ONLINE_SESSIONS=session, ONLINE_SEATS="seat0",
                     ACTIVE_SESSIONS=_if(is_active, session), ACTIVE_SEATS=_if(is_active, "seat0"))

    def lock(self, session):
        self._services.lock(session)

    def unlock(self, session):
        self._services.unlock(session)


def in_session(command, groups=(), session="c1"):
    """The command that runs `command` in the session, as its user with these groups."""
    user = SESSIONS[session]
    rights = f"--groups={','.join(groups)}" if groups else "--clear-groups"
    return ["sh", "-c", 'echo 0 >"$0" && exec "$@"', members(session),
            "setpriv", f"--reuid={user.pw_uid}", f"--regid={user.pw_gid}", rights, *command]
