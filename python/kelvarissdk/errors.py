"""What a call raises: KelvarisError, with a class of its own for each code."""

from __future__ import annotations

from typing import Any

from ._abi import ErrorType

__all__ = [
    "AccountError",
    "CallCancelledError",
    "CallTimeoutError",
    "CallbackRequiredError",
    "CredentialsError",
    "DirectoryError",
    "InvalidArgumentError",
    "KelvarisError",
    "LockedByAccountError",
    "LockedByServerError",
    "NetworkError",
    "NoError",
    "NotConnectedError",
    "OAuthTokenExpiredError",
    "PlatformUnsupportedError",
    "SdkError",
    "ServerError",
    "SynchronousInCallbackError",
    "TooManyRequestsError",
    "VpnAdapterError",
]


class KelvarisError(Exception):
    """
    A call failed.

    `str()` gives a text for people, the daemon's or the library's; `code` is what a program looks at, and
    `number` is the code as it came, for a code without a name.
    """

    code: ErrorType = ErrorType.UNKNOWN

    def __init__(self, message: str = "", number: int | None = None) -> None:
        self.number = int(self.code) if number is None else number
        self.code = ErrorType(self.number)
        super().__init__(message or self.code.to_string())


class NoError(KelvarisError):
    """A lock ended `set_esni_enabled`, and it is neither the server's nor the account's."""

    code = ErrorType.NO_ERROR


class NetworkError(KelvarisError):
    """The daemon couldn't reach the network."""

    code = ErrorType.NETWORK


class ServerError(KelvarisError):
    """The daemon reports an error of the server."""

    code = ErrorType.SERVER


class CredentialsError(KelvarisError):
    """The daemon reports wrong credentials."""

    code = ErrorType.CREDENTIALS


class DirectoryError(KelvarisError):
    """The daemon reports an error of the directory service."""

    code = ErrorType.DIRECTORY


class AccountError(KelvarisError):
    """The daemon reports an error of the account."""

    code = ErrorType.ACCOUNT


class TooManyRequestsError(KelvarisError):
    """The daemon reports too many requests."""

    code = ErrorType.TOO_MANY_REQUESTS


class OAuthTokenExpiredError(KelvarisError):
    """The daemon reports that the OAuth token has expired."""

    code = ErrorType.OAUTH_TOKEN_EXPIRED


class VpnAdapterError(KelvarisError):
    """The daemon reports an error of its VPN adapter."""

    code = ErrorType.VPN_ADAPTER


class SdkError(KelvarisError):
    """A report can't be read, memory ran out in the library, or the client is the parent's, after a fork."""

    code = ErrorType.SDK


class CallTimeoutError(KelvarisError, TimeoutError):
    """No report came in time; the link is open, or the daemon has closed it for good."""

    code = ErrorType.TIMEOUT


class InvalidArgumentError(KelvarisError, ValueError):
    """The library refused an argument before anything was sent."""

    code = ErrorType.INVALID_ARGUMENT


class CallbackRequiredError(KelvarisError):
    """The call has no form that waits. This package never makes such a call."""

    code = ErrorType.CALLBACK_REQUIRED


class PlatformUnsupportedError(KelvarisError):
    """Not raised."""

    code = ErrorType.PLATFORM_UNSUPPORTED


class NotConnectedError(KelvarisError, ConnectionError):
    """No report came in time, and there is no link; the library tries to connect again."""

    code = ErrorType.NOT_CONNECTED


class LockedByServerError(KelvarisError):
    """The server has locked the setting."""

    code = ErrorType.LOCKED_BY_SERVER


class SynchronousInCallbackError(KelvarisError):
    """
    A call would have waited on the library's own thread, which only the interpreter's garbage collection can
    bring a program's code to.
    """

    code = ErrorType.SYNCHRONOUS_IN_CALLBACK


class LockedByAccountError(KelvarisError):
    """The account has locked the setting."""

    code = ErrorType.LOCKED_BY_ACCOUNT


class CallCancelledError(KelvarisError):
    """The client was closed while the call or the iteration waited, or before."""

    code = ErrorType.CANCELLED

    def __init__(self, message: str = "the client is closed", number: int | None = None) -> None:
        super().__init__(message, number)


_CLASSES = {each.code: each for each in KelvarisError.__subclasses__()}


def error_of(number: int, message: str = "") -> KelvarisError:
    """The exception for a code; KelvarisError itself where no class is named after it."""
    return _CLASSES.get(ErrorType(number), KelvarisError)(message, number)


def error_in(head: Any) -> KelvarisError:
    """The exception for the head of a record."""
    return error_of(head.errorCode, head.errorMessage.decode(errors="replace"))
