// Local message sockets that stand for named pipes (private).
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace osw_pipe {

// The prefix of every pipe name: backslash, backslash, '.', backslash, "pipe", backslash.
inline constexpr char16_t NamespacePrefix[] = u"\\\\.\\pipe\\";

// The socket file that stands for a full pipe name (namespace prefix + name).
// The name becomes one file in the pipe folder ('%' and '/' percent-encoded);
// a name too long for a socket address is replaced by its SHA-1 in hex.
QByteArray socketPath(QString const& fullName);

// The functions below return 0 or an errno value.

// Creates the pipe folder if needed (mode 0700) and checks that this user owns it.
int preparePipeFolder();
// A listening message socket bound to path (file mode 0600). A file left by a
// dead server is replaced; a live one gives EADDRINUSE.
int listenAt(QByteArray const& path, int* fd);
// Connects a message socket to the server listening at path.
int connectTo(QByteArray const& path, int* fd);
// Waits for and accepts the next client of a listening socket.
int acceptClient(int listenFd, int* fd);

} // namespace osw_pipe
