"""Readers of results, by the class of the result."""

from __future__ import annotations

from typing import Any, Callable, Dict

from ..errors import Unsupported
from ..parts import Parts

Reader = Callable[[Any, float], Parts]

_readers: Dict[str, Reader] = {}


def reads(*classes: str) -> Callable[[Reader], Reader]:
    """Registers a reader of results of these classes, each given as "module.Class".

    The names are looked up among the bases of a result, so that no engine is imported before a
    result of it is there.
    """

    def register(reader: Reader) -> Reader:
        for name in classes:
            _readers[name] = reader
        return reader

    return register


def parts_of(result: Any, level: float = 0.95) -> Parts:
    """What a result gives.

    Parameters
    ----------
    result
    level : float
        That of intervals which a reader makes itself.

    Raises
    ------
    Unsupported
        When no reader knows its class, or the data are gone.
    """
    from . import bayes, discrete, generalized, linear_models, mixedlm, ordered  # noqa: F401

    inner = getattr(result, "_results", result)
    for base in type(inner).__mro__:
        reader = _readers.get(f"{base.__module__}.{base.__qualname__}")
        if reader is not None:
            if getattr(getattr(inner, "model", None), "endog", inner) is None:
                raise Unsupported("The data were removed from the result; a report needs them.")
            return reader(inner, level)
    raise unknown(inner)


def unknown(result: Any) -> Unsupported:
    """What is told of a result that no reader knows."""
    model = type(getattr(result, "model", result)).__name__
    return Unsupported(
        f"No reader knows results of {model}: report takes those of MixedLM, GEE, "
        "BinomialBayesMixedGLM, PoissonBayesMixedGLM, GLM, OLS, WLS, GLS, Logit, Probit, Poisson, "
        "NegativeBinomial and OrderedModel of statsmodels; for any other, hand its numbers to "
        "hierfit.fit."
    )
