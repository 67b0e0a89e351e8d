"""Data, the numbers of other programs, and the command, for all tests."""

import json
import pathlib
import sys
import warnings

import numpy as np
import pandas as pd
import pytest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))

import hierfit  # noqa: E402
from hierfit import command  # noqa: E402

SCHEMA = HERE.parents[2] / "import" / "fit.schema.json"


def has_command():
    try:
        return bool(command.find())
    except hierfit.CommandMissing:
        return False


needs_command = pytest.mark.skipif(not has_command(), reason="there is no command hierfit")


@pytest.fixture(autouse=True)
def quiet_fits():
    """What statsmodels warns of while it fits is not what these tests are about."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        warnings.simplefilter("error", hierfit.HierfitWarning)
        yield


@pytest.fixture(scope="session")
def reference():
    return json.loads((HERE / "data" / "reference.json").read_text())


def frame(name):
    return pd.read_csv(HERE / "data" / f"{name}.csv")


@pytest.fixture
def sleepstudy():
    return frame("sleepstudy")


@pytest.fixture
def pastes():
    return frame("pastes")


@pytest.fixture
def penicillin():
    return frame("penicillin").assign(all=1)


@pytest.fixture
def cbpp():
    data = frame("cbpp")
    return data.assign(others=data["size"] - data["incidence"], period=data["period"].astype(str))


@pytest.fixture
def cake():
    data = frame("cake")
    limits, words = [0, 25, 32, 38, 90], ["a", "b", "c", "d"]
    return data.assign(
        id=data["recipe"] + data["replicate"].astype(str),
        quality=pd.Categorical(pd.cut(data["angle"], limits, labels=words), words, ordered=True),
    )


@pytest.fixture
def herds(cbpp):
    """An animal a record."""
    events = cbpp.loc[cbpp.index.repeat(cbpp["incidence"]), ["herd", "period"]].assign(sick=1)
    others = cbpp.loc[cbpp.index.repeat(cbpp["others"]), ["herd", "period"]].assign(sick=0)
    return pd.concat([events, others], ignore_index=True)


def numbers(rows, member):
    """A member of all rows, with missing ones as such."""
    return np.array([np.nan if row.get(member) is None else row[member] for row in rows], float)


def close(found, wanted, rtol=1e-6, atol=1e-9):
    np.testing.assert_allclose(found, wanted, rtol=rtol, atol=atol)
