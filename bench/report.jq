# Makes one document of rows out of Google Benchmark's, one for each program.
#
#   jq --slurp --argjson others PERCENT -f bench/report.jq kzoci_bench*.json
#
# PERCENT of a processor is what other processes took meanwhile. a and b of a row are
# nanoseconds, or bytes where that is the unit.

def rounded($digits): pow(10; $digits) as $unit | . * $unit | round / $unit;
def bound: if . == null then null else rounded(3) end;

# Whether the row keeps a bound; null where it has none.
def keeps($bound):
  if $bound == null then null
  elif .higher_is_better then .ratio >= $bound
  else .ratio <= $bound end;

def judged: . + {meets_must: keeps(.must), meets_goal: keeps(.goal)};

def row:
  (.label | split(";")) as [$unit, $group]
  | {
      row: (.run_name | sub("/iterations:[0-9]+/repeats:[0-9]+$"; "")),
      ratio: (.ratio | rounded(4)),
      a: (.a | rounded(3)),
      b: (.b | rounded(3)),
      unit: $unit,
      higher_is_better: (.higher_is_better != null),
      must: (.must | bound),
      goal: (.goal | bound),
      growth: (if $group == "" then null
               else {group: $group, size: .size, must: (.growth_must | bound)} end)
    };

# The most that a goes up from one size to a larger one, apart from what b goes up.
def growth:
  [. as $rows | range(length) as $small | range($small + 1; length) as $large
   | ($rows[$large].a / $rows[$small].a)
     / ([1, $rows[$large].b / $rows[$small].b] | max)]
  | max;

# One more row for each group that has a bound.
def growth_row:
  {
    row: ("growth over the " + .[0].growth.group),
    ratio: (sort_by(.growth.size) | growth | rounded(4)),
    a: null, b: null, unit: null, higher_is_better: false,
    must: .[0].growth.must, goal: null, growth: null
  };

def medians: map(.benchmarks[] | select(.aggregate_name == "median"));

medians as $medians
| ($medians | map(row)) as $rows
| {
    machine: (.[0].context | {processor, cpus: .num_cpus, mhz: .mhz_per_cpu, caches, compiler}),
    mode: .[0].context.mode,
    date: .[0].context.date,
    others_percent: $others,
    repetitions: $medians[0].repetitions,
    rows: ($rows + ($rows | map(select(.growth.must != null)) | group_by(.growth.group)
                    | map(growth_row))
           | map(judged))
  }
