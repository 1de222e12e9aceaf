// What a row of the grammar says of a key.
#pragma once

#include <cstddef>
#include <span>

#include "kzoci/oci_tnsname.h"
#include "messages.h"

namespace kzoci::tns {

// The blocks in which keys have their place.
enum class Block : unsigned char {
  entry,  // an ordinary entry, and a literal descriptor
  system_variables,
  description,
  address_list,
  address,
  connect_data,
  blacklist,
  remove_strategy,
  append_strategy
};

enum class ValueKind : unsigned char { block, word, integer, text };

// How a field keeps a value.
enum class Storage : unsigned char {
  nowhere,  // not at all
  text,     // characters, and their number beside them
  number,   // sb8
  seconds,  // time_t
  count,    // ub4, the value's low 32 bits
  option    // an int or an enumeration of its size
};

enum class TextCopy : unsigned char {
  bytes,  // byte for byte
  string  // up to the first zero byte, zeros after it
};

struct Word {
  const char *text;
  int value;
};

// The words that a value may be, in the order in which they are tried.
struct Words {
  std::span<const Word> words;
  Message<int, const char *> refused;
};

// A field of the record of the key's block: a number, or characters with a length beside
// them.
struct Field {
  Storage storage = Storage::nowhere;
  std::size_t at = 0;
  std::size_t length_at = 0;
  ub4 capacity = 0;  // of the characters' array
};

struct Value {
  ValueKind kind;
  Field field = {};
  sb8 by_default = 0;  // texts are empty by default
  ub4 limit = 0;       // longest text
  TextCopy copy = TextCopy::bytes;
  const Words *words = nullptr;  // of a word
  Block opens = Block::entry;    // of a block
};

// The message that logs a system variable after it was read.
struct Report {
  const Message<long_argument> *number = nullptr;
  const Message<int, const char *> *text = nullptr;
};

struct Key {
  const char *word;
  KZCILBKeyType type;
  Block block;
  Value value;
  const char *name = nullptr;   // of the field, for people; null: no field of its own
  const char *label = nullptr;  // of its line in the dump; null: not printed
  Report report = {};
};

constexpr Value block(Block opens) {
  Value value = {ValueKind::block};
  value.opens = opens;
  return value;
}

constexpr Value integer(Field field, sb8 by_default = 0) {
  return {ValueKind::integer, field, by_default};
}

constexpr Value word(Field field, const Words &words, sb8 by_default) {
  Value value = {ValueKind::word, field, by_default};
  value.words = &words;
  return value;
}

constexpr Value text(Field field, ub4 limit, TextCopy copy = TextCopy::bytes) {
  return {ValueKind::text, field, 0, limit, copy};
}

}  // namespace kzoci::tns
