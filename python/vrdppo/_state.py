"""A state: the library's UTF-16 code units, kept as they are."""

import array as _array
import sys as _sys


def _units_le(units):
    if _sys.byteorder == "big":
        units = _array.array("H", units)
        units.byteswap()
    return units.tobytes()


class State:
    """A state as the library hands it out and takes it: a sequence of UTF-16 code units.

    Not a `str`: a record's numbers travel inside a state, and where two of their code units
    happen to form a surrogate pair a `str` would join them into one character. A State keeps
    every unit; `len()` counts units, indexing gives a unit (an int), slicing a State.
    `bytes(state)` is its UTF-16-LE bytes; `State(bytes)`, `State(str)` and `State(units)` make
    one (a `str` through UTF-16 with lone surrogates kept)."""

    __slots__ = ("_data",)

    def __init__(self, value=b""):
        if isinstance(value, State):
            data = value._data
        elif isinstance(value, (bytes, bytearray, memoryview)):
            data = bytes(value)
        elif isinstance(value, str):
            data = value.encode("utf-16-le", "surrogatepass")
        elif value is None:
            raise TypeError("a state cannot be None")
        else:
            try:
                data = _units_le(_array.array("H", value))
            except (TypeError, OverflowError) as e:
                raise TypeError(f"a state is made of bytes, a str or code units, not "
                                f"{type(value).__name__}: {e}") from None
        if len(data) % 2:
            raise ValueError(f"a state's UTF-16-LE bytes come in pairs; {len(data)} is odd")
        self._data = data

    @classmethod
    def _of(cls, data):
        s = cls.__new__(cls)
        s._data = data
        return s

    def __len__(self):
        return len(self._data) // 2

    def __bytes__(self):
        return self._data

    def units(self):
        """The code units as an array('H')."""
        out = _array.array("H")
        out.frombytes(self._data)
        if _sys.byteorder == "big":
            out.byteswap()
        return out

    def text(self):
        """The units as a str (a surrogate pair joins into one character, lone ones are kept):
        for reading, not for handing back."""
        return self._data.decode("utf-16-le", "surrogatepass")

    def __getitem__(self, index):
        if isinstance(index, slice):
            return State._of(_units_le(self.units()[index]))
        return self.units()[index]

    def __add__(self, other):
        if not isinstance(other, State):
            return NotImplemented
        return State._of(self._data + other._data)

    def __eq__(self, other):
        if isinstance(other, State):
            return self._data == other._data
        return NotImplemented

    def __hash__(self):
        return hash((State, self._data))

    def __repr__(self):
        shown = self[:40].text()
        more = "..." if len(self) > 40 else ""
        return f"<vrdppo.State of {len(self)} code units: {shown!r}{more}>"
