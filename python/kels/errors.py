"""Statuses as exceptions and warnings."""
from . import _core

text = _core.status_text


class Error(Exception):
    """A call that failed, and stored nothing. `status` is the code of the C interface."""

    def __init__(self, status):
        super().__init__(status)
        self.status = status

    def __str__(self):
        return f"{text(self.status)} ({self.status})"


class Warning(RuntimeWarning):
    """The work is done, and every offending element has a defined result."""
