"""What can go wrong, each with one sentence for people."""


class HierfitError(Exception):
    """The base of all errors of this package."""


class CommandMissing(HierfitError):
    """There is no command ``hierfit`` to be found."""


class CommandFailed(HierfitError):
    """The command refused a document or could not write.

    Attributes
    ----------
    status : int
        Its exit status: 1 for a document, 2 for an option or a file.
    """

    def __init__(self, message: str, status: int) -> None:
        super().__init__(message)
        self.status = status


class Unsupported(HierfitError):
    """A result, or a wish about it, that cannot be reported as it stands."""


class HierfitWarning(UserWarning):
    """What the command finds odd about a document; it changes no report."""
