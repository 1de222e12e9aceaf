#include "model_tree.h"

namespace model {
namespace {

class Line {
 public:
  explicit Line(std::string &out, const char *beginning) : out_(out) { out_ += beginning; }
  ~Line() { out_ += '\n'; }
  Line(const Line &) = delete;
  Line &operator=(const Line &) = delete;

  Line &add(const char *label, const std::string &text) {
    out_ += label;
    out_ += text;
    return *this;
  }
  Line &add(const char *label, sb8 number) { return add(label, std::to_string(number)); }
  Line &count(const char *label, std::size_t number) { return add(label, std::to_string(number)); }

 private:
  std::string &out_;
};

void append(const Address &address, std::string &out) {
  Line(out, "      address")
      .add(" host=", address.host)
      .add(" port=", address.port)
      .add(" protocol=", address.protocol)
      .add(" weight=", address.weight);
}

void append(const AddressList &list, std::string &out) {
  Line(out, "    list")
      .add(" kzlb=", list.balanced)
      .add(" strategy=", list.strategy)
      .count(" addresses=", list.addresses.size());
  for (const Address &address : list.addresses) append(address, out);
}

void append(const ConnectData &data, std::string &out) {
  Line(out, "    data")
      .add(" service=", data.service)
      .add(" extra=", data.extra)
      .add(" session=", data.session)
      .add(" mode=", data.mode)
      .add(" default_sid=", data.default_sid);
}

void append(const Description &d, std::string &out) {
  Line(out, "  description")
      .add(" kzlb=", d.balanced)
      .add(" group=", d.group)
      .add(" all_downs=", d.all_downs)
      .add(" retry=", d.retry)
      .add(" connect=", d.connect)
      .add(" read=", d.read)
      .add(" write=", d.write)
      .add(" black=", d.black.remove)
      .add(",", d.black.remove_timeout)
      .add(",", d.black.append)
      .add(",", d.black.retry_times)
      .add(",", d.black.duration)
      .count(" lists=", d.lists.size());
  for (const AddressList &list : d.lists) append(list, out);
  if (d.data) append(*d.data, out);
}

void append(const Variables &v, std::string &out) {
  Line(out, "  variables")
      .add(" threshold=", v.threshold)
      .add(" buffer=", v.buffer)
      .add(" flush=", v.flush)
      .add(" session=", v.session)
      .add(" log_size=", v.log_size)
      .add(" log_count=", v.log_count)
      .add(" log_level=", v.log_level)
      .add(" log_path=", v.log_path);
}

}  // namespace

std::string text_of_nothing() { return "services=0\n"; }

std::string text_of(const Service &service) {
  std::string out = "services=1\n";
  Line(out, " service ").add("", service.name).count(" descriptions=", service.descriptions.size());
  for (const Description &description : service.descriptions) append(description, out);
  append(service.variables, out);
  return out;
}

void append_tags_below(const AddressList &list, Tags &tags) {
  tags.insert(tags.end(), list.addresses.size(), "address");
}

void append_tags_below(const Description &description, Tags &tags) {
  for (const AddressList &list : description.lists) {
    append_tags_below(list, tags);
    tags.emplace_back("address_list");
  }
  if (description.data) tags.emplace_back("KZCIConnectData");
}

void append_tags_below(const Service &service, Tags &tags) {
  for (const Description &description : service.descriptions) {
    append_tags_below(description, tags);
    tags.emplace_back("KZCIDescription");
  }
}

}  // namespace model
