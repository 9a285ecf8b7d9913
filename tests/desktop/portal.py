"""The portal of shortcuts and of file dialogs, complete from the moment its name is on the bus."""
import dbus

BUS_NAME = "org.freedesktop.portal.Desktop"
MAIN_OBJ = "/org/freedesktop/portal/desktop"
MAIN_IFACE = "org.freedesktop.portal.GlobalShortcuts"
SYSTEM_BUS = False
FILES = "org.freedesktop.portal.FileChooser"


def load(mock, _):
    answer = "ret = dbus.ObjectPath('/elsewhere')"
    mock.AddMethods(MAIN_IFACE, [("CreateSession", "a{sv}", "o", answer),
                                 ("BindShortcuts", "oa(sa{sv})sa{sv}", "o", answer)])
    mock.AddMethods(FILES, [("OpenFile", "ssa{sv}", "o", answer)])
    mock.AddProperties(FILES, {"version": dbus.UInt32(3)})
    mock.AddObject("/elsewhere", "org.freedesktop.portal.Request", {}, [("Close", "", "", "")])
