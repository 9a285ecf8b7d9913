"""The portal of shortcuts, complete from the moment its name is on the bus."""
BUS_NAME = "org.freedesktop.portal.Desktop"
MAIN_OBJ = "/org/freedesktop/portal/desktop"
MAIN_IFACE = "org.freedesktop.portal.GlobalShortcuts"
SYSTEM_BUS = False


def load(mock, _):
    answer = "ret = dbus.ObjectPath('/elsewhere')"
    mock.AddMethods(MAIN_IFACE, [("CreateSession", "a{sv}", "o", answer),
                                 ("BindShortcuts", "oa(sa{sv})sa{sv}", "o", answer)])
