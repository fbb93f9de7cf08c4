"""A session with the program, one command at a time, as somebody at a terminal would have it."""

import os
import select
import subprocess
import time

PROMPT = b"VanCLI> "
TIME_LIMIT = 30  # seconds, for each command


class SessionError(Exception):
    """The program did not answer, or ended badly; the text says how."""


class Session:
    """One run of the program. Each command is typed when the prompt has come."""

    def __init__(self, program, cwd):
        self.process = subprocess.Popen([str(program)], cwd=cwd, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, env=dict(os.environ, LC_ALL="C", TZ="UTC"))
        self.hasended = False
        self.answer("the start")

    def answer(self, what):
        """What is printed up to the next prompt or the end."""
        gathered = b""
        until = time.monotonic() + TIME_LIMIT
        # Output is flushed before a line is read, so the prompt is the last that comes.
        while not gathered.endswith(PROMPT):
            left = until - time.monotonic()
            if left <= 0 or not select.select([self.process.stdout], [], [], left)[0]:
                self.process.kill()
                self.process.wait()
                raise SessionError(f"no prompt within {TIME_LIMIT} seconds after {what}")
            piece = os.read(self.process.stdout.fileno(), 1 << 16)
            if not piece:
                self.hasended = True
                return gathered
            gathered += piece
        return gathered[: -len(PROMPT)]

    def type(self, command):
        """Types one command and returns what it prints."""
        if self.hasended:
            raise SessionError(f"the program has ended before: {command}")
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()
        return self.answer(command)

    def end(self):
        """Ends the session by the end of its input, if no "exit" has done so."""
        try:
            self.process.stdin.close()
        except BrokenPipeError:
            pass
        try:
            status = self.process.wait(TIME_LIMIT)
        except subprocess.TimeoutExpired:
            self.process.kill()
            status = self.process.wait()
        self.process.stdout.close()
        if status != 0:
            raise SessionError(f"the program ended with status {status}")
