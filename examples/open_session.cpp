// What a connection layer does with an identifier: build it, read what a session is
// opened with, list the servers, and open sessions by the lists, the weights, the
// blacklist and the retries that the identifier asks for. open_session.c is the same
// in C.
//
//   KZCI_TNS_FILE=examples/tnsnames.ora open_session_cpp sales [DOWN_HOST]...
//
// There is no network here: every server answers, except those on the hosts that are
// named as down. The library says what the settings are and not what they bring about;
// this is one way to read them.
#include <algorithm>
#include <cinttypes>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <utility>
#include <vector>

#include <kzoci/oci_tnsname.hpp>

namespace {

constexpr std::size_t session_count = 4;
constexpr sb8 time_between_sessions = 5;
constexpr sb8 largest_number = 1000000;  // of a weight and a time, so that no sum overflows

// What the layer knows of a server, beside its record.
struct Server {
  const KZCIAddress *address;
  std::size_t sessions = 0;     // opened on it
  bool is_blacklisted = false;  // until retry_at, or for as long as retries_left is 0
  sb8 retry_at = 0;
  sb8 retries_left = 0;
};

struct List {
  const KZCIAddressList *record;
  std::vector<Server> servers;
};

struct Description {
  const KZCIDescription *record;
  std::vector<List> lists;
};

void print(const char *before, std::string_view text, const char *after) {
  std::printf("%s%.*s%s", before, static_cast<int>(text.size()), text.data(), after);
}

void print_session(const KZCITnsService &service) {
  const kzoci::SessionData session(service);
  if (!session.extra_info().empty()) {
    print("extra information ", session.extra_info(), "");
    std::printf(", mode %" PRId32 "\n", session.kz_mode());
  }
  if (!session.session_variable().empty())
    print("session variables ", session.session_variable(), "\n");
  if (const kzoci::Dblink link(service); link) print("link ", link.text(), "\n");
}

// Prints the servers and enters them into the layer's tables.
List list_addresses(const KZCIAddressList &record) {
  List list{&record, {}};
  for (const KZCIAddress &address : kzoci::addresses(record)) {
    print("    ", kzoci::host(address), " port ");
    print("", kzoci::port(address), "");
    std::printf(" weight %" PRId64 "\n", address.weight);
    list.servers.push_back({&address});
  }
  return list;
}

std::vector<Description> list_servers(const KZCITnsService &service) {
  std::vector<Description> out;
  for (const KZCIDescription &des : kzoci::descriptions(service)) {
    out.push_back({&des, {}});
    std::printf("description %zu\n", out.size());
    for (const KZCIAddressList &list : kzoci::address_lists(des)) {
      std::printf("  list %zu\n", out.back().lists.size() + 1);
      out.back().lists.push_back(list_addresses(list));
    }
  }
  return out;
}

class Layer {
 public:
  Layer(const KZCITnsService &service, std::vector<std::string_view> down_hosts)
      : descriptions_(list_servers(service)), down_hosts_(std::move(down_hosts)) {}

  bool open_sessions() {
    for (session_ = 0; session_ < session_count; ++session_) {
      std::printf("session %zu at %" PRId64 "\n", session_ + 1, now_);
      if (!connect_to_any()) {
        // A real layer waits here, and tries more than once.
        if (!take_back()) return false;
        std::printf("  all are down: once more\n");
        if (!connect_to_any()) return false;
      }
      now_ += time_between_sessions;
    }
    return true;
  }

 private:
  bool may_be_tried(const Server &server) const {
    return !server.is_blacklisted || (server.retries_left > 0 && server.retry_at <= now_);
  }

  // A server of the list that may be tried, counted from `from` on; null when none is.
  Server *next_in_turn(List &list, std::size_t from) const {
    const std::size_t count = list.servers.size();
    for (std::size_t i = 0; i < count; ++i) {
      Server &server = list.servers[(from + i) % count];
      if (may_be_tried(server)) return &server;
    }
    return nullptr;
  }

  sb8 share(const Server &server) const {
    return may_be_tried(server) ? std::clamp<sb8>(server.address->weight, 0, largest_number) : 0;
  }

  // Any server of the list, in proportion to its weight.
  Server *draw(List &list) {
    sb8 total = 0;
    for (const Server &server : list.servers) total += share(server);
    if (total == 0) return next_in_turn(list, 0);
    sb8 point = drawn_ % total;
    drawn_ += 3;
    auto server = list.servers.begin();
    while (point >= share(*server)) point -= share(*server++);
    return &*server;
  }

  // The server of the list that has most sessions.
  Server *most_used(List &list) const {
    Server *found = next_in_turn(list, 0);
    for (Server &server : list.servers)
      if (may_be_tried(server) && server.sessions > found->sessions) found = &server;
    return found;
  }

  Server *choose(List &list) {
    if (list.record->kzlb == 0) return next_in_turn(list, 0);
    switch (list.record->kzlb_strategy) {
      case LB_OPTION_RANDOM:
        return draw(list);
      case LB_OPTION_SERVERAFFINITY:
        return most_used(list);
      default:  // LB_OPTION_ROTATION
        return next_in_turn(list, session_);
    }
  }

  // Takes a server out, and says when it is tried again.
  void blacklist(const KZCIBlacklistConf &conf, Server &server) const {
    const bool counts = conf.append_strategy == LB_OPTION_RETRY_DERUATION;
    if (!server.is_blacklisted)
      server.retries_left = counts ? conf.retry_times : 1;
    else if (counts)
      --server.retries_left;
    server.is_blacklisted = true;
    // Without that strategy it is back for the next session.
    server.retry_at = now_ + (counts ? std::clamp<sb8>(conf.duration, 1, largest_number) : 1);
    std::printf("no answer within %" PRId64 ", blacklisted until ", conf.remove_timeout);
    if (server.retries_left > 0)
      std::printf("%" PRId64 "\n", server.retry_at);
    else
      std::printf("all are down\n");
  }

  bool connect_to(const KZCIDescription &des, Server &server) const {
    print("  ", kzoci::host(*server.address), ":");
    print("", kzoci::port(*server.address), " ");
    if (std::count(down_hosts_.begin(), down_hosts_.end(), kzoci::host(*server.address)) != 0) {
      blacklist(des.black_list_conf, server);
      return false;
    }
    server.is_blacklisted = false;
    ++server.sessions;
    std::printf("open\n");
    return true;
  }

  // Tries the lists one after the other, in turn where the description balances.
  bool connect_by(Description &des) {
    const std::size_t count = des.lists.size();
    const std::size_t first = des.record->kzlb != 0 ? session_ : 0;
    for (std::size_t i = 0; i < count; ++i) {
      List &list = des.lists[(first + i) % count];
      while (Server *const server = choose(list))
        if (connect_to(*des.record, *server)) return true;
    }
    return false;
  }

  bool connect_to_any() {
    return std::any_of(descriptions_.begin(), descriptions_.end(),
                       [this](Description &des) { return connect_by(des); });
  }

  // All are down: takes back the servers whose description wants retries then.
  bool take_back() {
    bool some = false;
    for (Description &des : descriptions_) {
      if (des.record->retry_all_downs <= 0) continue;
      for (List &list : des.lists)
        for (Server &server : list.servers) {
          server.is_blacklisted = false;
          some = true;
        }
    }
    return some;
  }

  std::vector<Description> descriptions_;
  std::vector<std::string_view> down_hosts_;
  sb8 now_ = 0;
  std::size_t session_ = 0;  // number of the one that is being opened, from 0
  sb8 drawn_ = 0;            // in place of random numbers, so that every run is the same
};

}  // namespace

int main(int argc, char **argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: open_session_cpp IDENTIFIER [DOWN_HOST]...\n");
    return 64;
  }
  kzoci::Tns tns;
  const kzoci::Result result = tns.look_up(argv[1]);
  if (!result) {
    const bool missing = result.outcome == kzoci::Outcome::not_found;
    std::fprintf(stderr, "%s: %s\n", argv[1], missing ? "not found" : "malformed");
    return 1;
  }
  print_session(*result.service);
  Layer layer(*result.service, {argv + 2, argv + argc});
  if (layer.open_sessions()) return 0;
  std::fprintf(stderr, "%s: no server answers\n", argv[1]);
  return 1;
}
