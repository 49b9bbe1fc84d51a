"""An X11 session manager (XSMP, by libSM) that asks its one client to save its state, as it does before the end of a session.

Run as a program: prints a line with its address, then, once the client has saved, one with the properties that it has set.
"""

import ctypes
import select
import sys

P, I = ctypes.c_void_p, ctypes.c_int
ice, sm = ctypes.CDLL("libICE.so.6"), ctypes.CDLL("libSM.so.6")
for function in (ice.IceAcceptConnection, ice.IceComposeNetworkIdList, sm.SmsGenerateClientID):
    function.restype = P

SAVE_BOTH, INTERACT_NONE = 2, 0


class Value(ctypes.Structure):
    _fields_ = [("length", I), ("value", P)]


class Property(ctypes.Structure):
    _fields_ = [("name", ctypes.c_char_p), ("type", ctypes.c_char_p), ("count", I), ("values", ctypes.POINTER(Value))]


class Callbacks(ctypes.Structure):
    """SmsCallbacks: ten pairs of a function and what it is given."""
    _fields_ = [(f"{kind}{index}", P) for index in range(10) for kind in ("function", "data")]


REGISTER = ctypes.CFUNCTYPE(I, P, P, ctypes.c_char_p)
SET_PROPERTIES = ctypes.CFUNCTYPE(None, P, P, I, ctypes.POINTER(ctypes.POINTER(Property)))
SAVE_DONE = ctypes.CFUNCTYPE(None, P, P, I)
OTHER = ctypes.CFUNCTYPE(None, P, P)
NEW_CLIENT = ctypes.CFUNCTYPE(I, P, P, ctypes.POINTER(ctypes.c_ulong), ctypes.POINTER(Callbacks), P)
ALLOW_ALL = ctypes.CFUNCTYPE(I, ctypes.c_char_p)

properties, saves = {}, []


@REGISTER
def register(client, _data, _previous):
    sm.SmsRegisterClientReply(P(client), P(sm.SmsGenerateClientID(P(client))))
    sm.SmsSaveYourself(P(client), SAVE_BOTH, 0, INTERACT_NONE, 0)
    return 1


@SET_PROPERTIES
def set_properties(_client, _data, count, given):
    for index in range(count):
        one = given[index].contents
        properties[one.name.decode()] = [ctypes.string_at(one.values[each].value, one.values[each].length)
                                         for each in range(one.count)]


@SAVE_DONE
def save_done(client, _data, _success):
    saves.append(client)
    sm.SmsSaveComplete(P(client))


@OTHER
def other(_client, _data):
    pass


@NEW_CLIENT
def new_client(_connection, _data, mask, callbacks, _reason):
    handlers = [register, other, other, other, other, save_done, other, set_properties, other, other]
    for index, handler in enumerate(handlers):
        setattr(callbacks.contents, f"function{index}", ctypes.cast(handler, P))
    mask[0] = (1 << 10) - 1
    return 1


@ALLOW_ALL
def allow_all(_host):
    return 1


def serve():
    error = ctypes.create_string_buffer(256)
    count, listeners = I(), P()
    if not sm.SmsInitialize(b"test", b"1", new_client, None, allow_all, 256, error) or \
            not ice.IceListenForConnections(ctypes.byref(count), ctypes.byref(listeners), 256, error):
        sys.exit(error.value.decode())
    objects = ctypes.cast(listeners, ctypes.POINTER(P))
    for index in range(count.value):
        ice.IceSetHostBasedAuthProc(P(objects[index]), allow_all)
    print(ctypes.string_at(ice.IceComposeNetworkIdList(count, listeners)).decode(), flush=True)
    numbers = [ice.IceGetListenConnectionNumber(P(objects[index])) for index in range(count.value)]
    (number, *_others), _, _ = select.select(numbers, [], [])
    connection = P(ice.IceAcceptConnection(P(objects[numbers.index(number)]), ctypes.byref(I())))
    ice.IceProcessMessages.argtypes = (P, P, P)
    while not saves:
        ice.IceProcessMessages(connection, None, None)
    print(properties, flush=True)
    while ice.IceProcessMessages(connection, None, None) == 0:
        pass


if __name__ == "__main__":
    serve()
