// Client lists of "dsn.ini" shared by the client dialog tests, with and without windows.
#pragma once

#include <string>
#include <vector>

namespace vnt::test::dsnlist {

using Client = std::vector<std::string>;  // the lines of a client section
inline const Client kM{"*=M\xFCller GmbH", "DtaPth=T:\\Daten\\M1"};
inline const Client kS{"*=Schulze KG", "DtaPth=T:\\Daten\\M2"};
inline const Client kK{"*=Kaputt", "DtaPth=T:\\Daten\\M3", "Driver=NoSuchDriver"};

/// The whole text of "dsn.ini" with these clients.
inline std::string listText(const std::vector<Client>& clients) {
    std::string t = "[Settings]\r\nDefaultDriver=SQLite3\r\nCount=" + std::to_string(clients.size()) + "\r\n";
    for (std::size_t i = 0; i < clients.size(); ++i) {
        t += "[Dsn" + std::to_string(i + 1) + "]\r\n";
        for (const std::string& l : clients[i]) t += l + "\r\n";
    }
    return t;
}

}  // namespace vnt::test::dsnlist
