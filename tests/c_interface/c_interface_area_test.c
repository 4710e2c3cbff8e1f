/* Areas: every function, every status, every boundary. */

#include <float.h>
#include <math.h>
#include <stdlib.h>

#include "tests/c_interface/check.h"

static const double pi = 3.141592653589793;

static surveydata_area_definition define(uint32_t kind, const double* hz, const double* v,
                                         size_t count) {
  surveydata_area_definition definition;
  memset(&definition, 0, sizeof(definition));
  definition.struct_size = sizeof(definition);
  definition.kind = kind;
  definition.count = count;
  definition.hz = hz;
  definition.v = v;
  definition.hz_step = 0.1;
  definition.v_step = 0.2;
  return definition;
}

static surveydata_area* make(uint32_t kind, const double* hz, const double* v, size_t count) {
  const surveydata_area_definition definition = define(kind, hz, v, count);
  surveydata_area* area = NULL;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  CHECK(area != NULL);
  return area;
}

static const double corner_hz[] = {1.0, 2.0};
static const double corner_v[] = {0.5, 1.0};
static const double square_hz[] = {1.0, 2.0, 2.0, 1.0};
static const double square_v[] = {1.0, 1.0, 1.5, 1.5};
static const double tie_hz[] = {1.0, 2.0, 2.0, 1.0};
static const double tie_v[] = {1.0, 1.5, 1.0, 1.5};

static surveydata_area* make_rectangle(void) {
  return make(SURVEYDATA_RECTANGLE, corner_hz, corner_v, 2);
}
static surveydata_area* make_square(void) {
  return make(SURVEYDATA_POLYGON, square_hz, square_v, 4);
}
static surveydata_area* make_tie(void) { return make(SURVEYDATA_POLYGON, tie_hz, tie_v, 4); }
static surveydata_area* make_dome(void) { return make(SURVEYDATA_DOME, NULL, NULL, 0); }

/* ----- Creation */

static void test_create(void) {
  surveydata_area_definition definition = define(SURVEYDATA_POLYGON, square_hz, square_v, 4);
  surveydata_area* const nothing = (surveydata_area*)&definition;
  surveydata_area* area = nothing;
  CHECK_STATUS(surveydata_area_create(NULL, &area), SURVEYDATA_INVALID_ARGUMENT);
  CHECK(area == NULL);
  CHECK_STATUS(surveydata_area_create(&definition, NULL), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_create(NULL, NULL), SURVEYDATA_INVALID_ARGUMENT);

  area = nothing;
  definition.struct_size = sizeof(definition) - 1;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_WRONG_SIZE);
  CHECK(area == NULL);
  definition.struct_size = sizeof(definition) + 1;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_WRONG_SIZE);
  definition.struct_size = 0;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_WRONG_SIZE);
  definition.struct_size = sizeof(definition);

  area = nothing;
  definition.kind = 0;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_INVALID_ARGUMENT);
  CHECK(area == NULL);
  definition.kind = SURVEYDATA_DOME + 1;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_INVALID_ARGUMENT);
  definition.kind = UINT32_MAX;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_INVALID_ARGUMENT);

  definition = define(SURVEYDATA_POLYGON, NULL, square_v, 1);
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_INVALID_ARGUMENT);
  definition = define(SURVEYDATA_POLYGON, square_hz, NULL, 1);
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_INVALID_ARGUMENT);
  /* Without points the arrays may be null; the points of a dome are not read. */
  definition = define(SURVEYDATA_RECTANGLE, NULL, NULL, 0);
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  surveydata_area_destroy(area);
  definition = define(SURVEYDATA_DOME, NULL, NULL, 1000);
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  surveydata_area_destroy(area);
  surveydata_area_destroy(NULL);
}

static void test_prepare(void) {
  surveydata_area* const area = make_square();
  surveydata_area* prepared = area;
  CHECK_STATUS(surveydata_area_prepare(NULL, SURVEYDATA_QUESTIONS_FEW, &prepared),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK(prepared == NULL);
  prepared = area;
  CHECK_STATUS(surveydata_area_prepare(area, 0, &prepared), SURVEYDATA_INVALID_ARGUMENT);
  CHECK(prepared == NULL);
  CHECK_STATUS(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY + 1, &prepared),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_FEW, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  surveydata_area_destroy(area);
}

/* ----- Validity */

static void check_fault(const surveydata_area* area, uint32_t rule, uint64_t point_0,
                        uint64_t point_1, uint64_t edge_0, uint64_t edge_1) {
  surveydata_fault faults[2];
  size_t count = 0;
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 2, &count), SURVEYDATA_OK);
  CHECK(count == 1);
  CHECK(faults[0].rule == rule && faults[0].reserved == 0);
  CHECK(faults[0].points[0] == point_0 && faults[0].points[1] == point_1);
  CHECK(faults[0].edges[0] == edge_0 && faults[0].edges[1] == edge_1);
}

static void test_faults(void) {
  const uint64_t none = SURVEYDATA_NONE;
  surveydata_area_definition definition = define(SURVEYDATA_DOME, NULL, NULL, 0);
  surveydata_area* area = make_tie();
  surveydata_fault fault;
  size_t count = 7;
  check_fault(area, SURVEYDATA_FAULT_CROSSING_EDGES, none, none, 0, 2);
  CHECK_STATUS(surveydata_area_faults(area, &fault, sizeof(fault), 1, &count), SURVEYDATA_OK);
  CHECK(fabs(fault.hz - 1.5) < 1e-9 && 1.0 < fault.v && fault.v < 1.5);
  surveydata_area_destroy(area);
  {
    const double hz[] = {1.0, 2.0, 7.0};
    const double v[] = {1.0, 1.0, 1.5};
    area = make(SURVEYDATA_POLYGON, hz, v, 3);
    check_fault(area, SURVEYDATA_FAULT_POINT_OUT_OF_RANGE, 2, none, none, none);
    surveydata_area_destroy(area);
  }
  {
    const double hz[] = {1.0, 2.0, 1.5, 1.0};
    const double v[] = {1.0, 1.0, 1.5, 1.0};
    area = make(SURVEYDATA_POLYGON, hz, v, 4);
    check_fault(area, SURVEYDATA_FAULT_EQUAL_POINTS, 0, 3, none, none);
    surveydata_area_destroy(area);
  }
  {
    const double hz[] = {1.0, 1.0};
    area = make(SURVEYDATA_RECTANGLE, hz, corner_v, 2);
    check_fault(area, SURVEYDATA_FAULT_EQUAL_HZ, 0, 1, none, none);
    surveydata_area_destroy(area);
    area = make(SURVEYDATA_RECTANGLE, corner_hz, hz, 2);
    check_fault(area, SURVEYDATA_FAULT_EQUAL_V, 0, 1, none, none);
    surveydata_area_destroy(area);
  }
  area = make(SURVEYDATA_RECTANGLE, square_hz, square_v, 3);
  check_fault(area, SURVEYDATA_FAULT_POINT_COUNT, none, none, none, none);
  surveydata_area_destroy(area);
  definition.hz_step = 0.0;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  check_fault(area, SURVEYDATA_FAULT_HZ_STEP, none, none, none, none);
  surveydata_area_destroy(area);
  definition.hz_step = 0.1;
  definition.v_step = -0.1;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  check_fault(area, SURVEYDATA_FAULT_V_STEP, none, none, none, none);
  surveydata_area_destroy(area);
}

static void test_array_of_faults(void) {
  surveydata_area_definition definition = define(SURVEYDATA_DOME, NULL, NULL, 0);
  surveydata_area* area = NULL;
  surveydata_fault faults[3];
  surveydata_fault untouched;
  size_t count = 7;
  memset(&untouched, 0xEE, sizeof(untouched));
  definition.hz_step = definition.v_step = 0.0;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  /* Two faults: without an array; with an array that is too small, of the right size, larger. */
  CHECK_STATUS(surveydata_area_faults(area, NULL, sizeof(faults[0]), 0, &count), SURVEYDATA_OK);
  CHECK(count == 2);
  count = 7;
  memset(faults, 0xEE, sizeof(faults));
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 0, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(count == 2 && memcmp(&faults[0], &untouched, sizeof(untouched)) == 0);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 1, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(count == 2 && faults[0].rule == SURVEYDATA_FAULT_HZ_STEP);
  CHECK(memcmp(&faults[1], &untouched, sizeof(untouched)) == 0);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 2, &count), SURVEYDATA_OK);
  CHECK(count == 2 && faults[1].rule == SURVEYDATA_FAULT_V_STEP);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 3, &count), SURVEYDATA_OK);
  CHECK(count == 2 && memcmp(&faults[2], &untouched, sizeof(untouched)) == 0);

  CHECK_STATUS(surveydata_area_faults(NULL, faults, sizeof(faults[0]), 3, &count),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_faults(area, NULL, sizeof(faults[0]), 1, &count),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]), 3, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]) - 1, 3, &count),
               SURVEYDATA_WRONG_SIZE);
  CHECK_STATUS(surveydata_area_faults(area, faults, sizeof(faults[0]) + 1, 3, &count),
               SURVEYDATA_WRONG_SIZE);
  CHECK(count == 2);
  surveydata_area_destroy(area);
}

/* ----- Bounds */

static surveydata_bounds new_bounds(void) {
  surveydata_bounds bounds;
  memset(&bounds, 0xEE, sizeof(bounds));
  bounds.struct_size = sizeof(bounds);
  return bounds;
}

static void test_bounds(void) {
  surveydata_bounds bounds = new_bounds();
  surveydata_area* area = make_rectangle();
  CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_OK);
  CHECK(bounds.hz_min == 1.0 && bounds.hz_max == 2.0 && bounds.v_min == 0.5 &&
        bounds.v_max == 1.0 && bounds.encloses_zenith == 0);
  CHECK_STATUS(surveydata_area_bounds(NULL, &bounds), SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_bounds(area, NULL), SURVEYDATA_INVALID_ARGUMENT);
  bounds.struct_size = sizeof(bounds) - 1;
  CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_WRONG_SIZE);
  bounds.struct_size = sizeof(bounds) + 1;
  CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_WRONG_SIZE);
  surveydata_area_destroy(area);

  area = make_dome();
  bounds = new_bounds();
  CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_OK);
  CHECK(bounds.hz_min == 0.0 && bounds.hz_max == 2 * pi - 1e-6 && bounds.v_min == 0.0 &&
        bounds.v_max == 0.8 * pi && bounds.encloses_zenith == 1);
  surveydata_area_destroy(area);
  {
    /* A ring around the zenith, and a rectangle across Hz 0. */
    double hz[12];
    double v[12];
    int i;
    for (i = 0; i < 12; ++i) {
      hz[i] = 0.1 + 0.5 * i;
      v[i] = 0.3;
    }
    area = make(SURVEYDATA_POLYGON, hz, v, 12);
    CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_OK);
    CHECK(bounds.encloses_zenith == 1);
    surveydata_area_destroy(area);
    hz[0] = 6.0;
    area = make(SURVEYDATA_RECTANGLE, hz, corner_v, 2);
    CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_OK);
    CHECK(bounds.encloses_zenith == 0 && bounds.hz_min == 6.0 && bounds.hz_max < 1.0);
    surveydata_area_destroy(area);
  }
  area = make_tie();
  bounds = new_bounds();
  bounds.hz_min = 7.0;
  CHECK_STATUS(surveydata_area_bounds(area, &bounds), SURVEYDATA_NOT_VALID);
  CHECK(bounds.hz_min == 7.0);
  surveydata_area_destroy(area);
}

/* ----- Outline */

static void test_outline(void) {
  const double distances[] = {12.5, -1.0};
  surveydata_area_definition definition = define(SURVEYDATA_RECTANGLE, corner_hz, corner_v, 2);
  double hz[5] = {9, 9, 9, 9, 9};
  double v[5] = {9, 9, 9, 9, 9};
  double distance[5] = {9, 9, 9, 9, 9};
  size_t count = 7;
  surveydata_area* area = NULL;
  definition.distance = distances;
  CHECK_STATUS(surveydata_area_create(&definition, &area), SURVEYDATA_OK);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, NULL, NULL, 0, &count), SURVEYDATA_OK);
  CHECK(count == 4);
  count = 7;
  CHECK_STATUS(surveydata_area_outline(area, 3.0, hz, v, distance, 3, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK(count == 4 && hz[2] == 2.0 && hz[3] == 9 && v[3] == 9 && distance[3] == 9);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, hz, v, distance, 0, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, hz, v, distance, 4, &count), SURVEYDATA_OK);
  CHECK(hz[0] == 1.0 && v[0] == 0.5 && hz[1] == 2.0 && v[1] == 0.5 && hz[2] == 2.0 && v[2] == 1.0 &&
        hz[3] == 1.0 && v[3] == 1.0);
  CHECK(distance[0] == 12.5 && distance[1] == 12.5 && distance[2] == 12.5 && distance[3] == 12.5);
  CHECK(hz[4] == 9 && v[4] == 9 && distance[4] == 9);
  /* One array at a time. */
  hz[0] = v[0] = distance[0] = 9;
  CHECK_STATUS(surveydata_area_outline(area, 3.0, hz, NULL, NULL, 5, &count), SURVEYDATA_OK);
  CHECK(hz[0] == 1.0 && v[0] == 9 && distance[0] == 9);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, v, NULL, 5, &count), SURVEYDATA_OK);
  CHECK(v[0] == 0.5 && distance[0] == 9);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, NULL, distance, 5, &count), SURVEYDATA_OK);
  CHECK(distance[0] == 12.5);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, NULL, NULL, 3, &count),
               SURVEYDATA_BUFFER_TOO_SMALL);
  CHECK_STATUS(surveydata_area_outline(NULL, 3.0, hz, v, distance, 4, &count),
               SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_outline(area, 3.0, hz, v, distance, 4, NULL),
               SURVEYDATA_INVALID_ARGUMENT);
  surveydata_area_destroy(area);

  area = make_square();
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, NULL, distance, 4, &count), SURVEYDATA_OK);
  CHECK(count == 4 && distance[0] == 3.0 && distance[3] == 3.0);
  surveydata_area_destroy(area);
  area = make_dome();
  CHECK_STATUS(surveydata_area_outline(area, 3.0, NULL, NULL, NULL, 0, &count), SURVEYDATA_OK);
  CHECK(count == 0);
  surveydata_area_destroy(area);
}

/* ----- Containment */

/* The area unprepared, and prepared in both ways. */
typedef struct ways {
  surveydata_area* areas[3];
} ways;

static ways all_ways(surveydata_area* area) {
  ways all;
  all.areas[0] = area;
  CHECK_STATUS(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_FEW, &all.areas[1]),
               SURVEYDATA_OK);
  CHECK_STATUS(surveydata_area_prepare(all.areas[1], SURVEYDATA_QUESTIONS_MANY, &all.areas[2]),
               SURVEYDATA_OK);
  return all;
}
static void destroy_ways(ways all) {
  int i;
  for (i = 0; i < 3; ++i) surveydata_area_destroy(all.areas[i]);
}

static int contains(const surveydata_area* area, double hz, double v) {
  int32_t inside = 7;
  CHECK_STATUS(surveydata_area_contains(area, hz, v, &inside), SURVEYDATA_OK);
  CHECK(inside == 0 || inside == 1);
  return inside;
}

static void test_contains(void) {
  const ways squares = all_ways(make_square());
  const ways domes = all_ways(make_dome());
  const ways ties = all_ways(make_tie());
  int32_t inside = 7;
  int i;
  for (i = 0; i < 3; ++i) {
    CHECK(contains(squares.areas[i], 1.5, 1.25) == 1);
    CHECK(contains(squares.areas[i], 1.5 + 2 * pi, 1.25) == 1);
    CHECK(contains(squares.areas[i], 2.5, 1.25) == 0);
    CHECK(contains(squares.areas[i], 101.0, 1.25) == 0);
    CHECK(contains(squares.areas[i], (double)NAN, 1.25) == 0);
    CHECK(contains(squares.areas[i], 1.5, (double)INFINITY) == 0);
    CHECK(contains(domes.areas[i], 5.0, 0.8 * pi) == 1);
    CHECK(contains(domes.areas[i], 5.0, 2.6) == 0);
    CHECK(contains(ties.areas[i], 1.2, 1.25) == 0);
    CHECK_STATUS(surveydata_area_contains(squares.areas[i], 1.5, 1.25, NULL),
                 SURVEYDATA_INVALID_ARGUMENT);
  }
  CHECK_STATUS(surveydata_area_contains(NULL, 1.5, 1.25, &inside), SURVEYDATA_INVALID_ARGUMENT);
  CHECK(inside == 7);
  destroy_ways(squares);
  destroy_ways(domes);
  destroy_ways(ties);
}

enum { DIRECTIONS = 3000 };

/* Every layout of directions gives the same answers as single directions. */
static void test_contains_many(void) {
  const ptrdiff_t size = sizeof(double);
  const ways squares = all_ways(make_square());
  double* const pairs = malloc(2 * DIRECTIONS * sizeof(double));
  double* const hz = malloc(DIRECTIONS * sizeof(double));
  double* const v = malloc(DIRECTIONS * sizeof(double));
  /* One byte off the alignment of a double. */
  unsigned char* const odd = malloc(DIRECTIONS * sizeof(double) + 1);
  uint8_t* const expected = malloc(DIRECTIONS);
  uint8_t* const inside = malloc(DIRECTIONS + 1);
  size_t counts[] = {1, 2, 511, 512, 513, 1024, 1025, DIRECTIONS};
  size_t c;
  int i;
  int k;
  for (k = 0; k < DIRECTIONS; ++k) {
    hz[k] = pairs[2 * k] = 0.5 + 2.0 * (k * 37 % 101) / 101;
    v[k] = pairs[2 * k + 1] = 0.8 + 0.9 * (k * 53 % 97) / 97;
    memcpy(odd + 1 + k * size, &hz[k], sizeof(double));
  }
  for (i = 0; i < 3; ++i) {
    const surveydata_area* const area = squares.areas[i];
    for (k = 0; k < DIRECTIONS; ++k) expected[k] = (uint8_t)contains(area, hz[k], v[k]);
    CHECK(memchr(expected, 0, DIRECTIONS) != NULL && memchr(expected, 1, DIRECTIONS) != NULL);
    for (c = 0; c < sizeof(counts) / sizeof(counts[0]); ++c) {
      const size_t count = counts[c];
#define CHECK_ANSWERS(hz_at, hz_stride, v_at, v_stride)                                       \
  do {                                                                                        \
    memset(inside, 7, DIRECTIONS + 1);                                                        \
    CHECK_STATUS(                                                                             \
        surveydata_area_contains_many(area, hz_at, hz_stride, v_at, v_stride, count, inside), \
        SURVEYDATA_OK);                                                                       \
    CHECK(memcmp(inside, expected, count) == 0 && inside[count] == 7);                        \
  } while (0)
      CHECK_ANSWERS(hz, size, v, size);
      CHECK_ANSWERS(pairs, 2 * size, pairs + 1, 2 * size);
      CHECK_ANSWERS(hz, size, pairs + 1, 2 * size);
      CHECK_ANSWERS(pairs, 2 * size, v, size);
      CHECK_ANSWERS((const double*)(const void*)(odd + 1), size, v, size);
#undef CHECK_ANSWERS
    }
    /* Backwards, and one direction many times. */
    CHECK_STATUS(surveydata_area_contains_many(area, hz + DIRECTIONS - 1, -size, v + DIRECTIONS - 1,
                                               -size, DIRECTIONS, inside),
                 SURVEYDATA_OK);
    for (k = 0; k < DIRECTIONS; ++k) CHECK(inside[k] == expected[DIRECTIONS - 1 - k]);
    CHECK_STATUS(surveydata_area_contains_many(area, hz + 5, 0, v + 5, 0, DIRECTIONS, inside),
                 SURVEYDATA_OK);
    for (k = 0; k < DIRECTIONS; ++k) CHECK(inside[k] == expected[5]);

    CHECK_STATUS(surveydata_area_contains_many(area, NULL, size, NULL, size, 0, NULL),
                 SURVEYDATA_OK);
    CHECK_STATUS(surveydata_area_contains_many(area, NULL, size, v, size, 1, inside),
                 SURVEYDATA_INVALID_ARGUMENT);
    CHECK_STATUS(surveydata_area_contains_many(area, hz, size, NULL, size, 1, inside),
                 SURVEYDATA_INVALID_ARGUMENT);
    CHECK_STATUS(surveydata_area_contains_many(area, hz, size, v, size, 1, NULL),
                 SURVEYDATA_INVALID_ARGUMENT);
  }
  CHECK_STATUS(surveydata_area_contains_many(NULL, hz, size, v, size, 0, inside),
               SURVEYDATA_INVALID_ARGUMENT);
  destroy_ways(squares);
  free(pairs);
  free(hz);
  free(v);
  free(odd);
  free(expected);
  free(inside);
}

/* ----- Explanation */

static surveydata_explanation new_explanation(void) {
  surveydata_explanation explanation;
  memset(&explanation, 0xEE, sizeof(explanation));
  explanation.struct_size = sizeof(explanation);
  return explanation;
}

static void test_explain(void) {
  const ways squares = all_ways(make_square());
  surveydata_area* const dome = make_dome();
  surveydata_area* const tie = make_tie();
  surveydata_explanation why = new_explanation();
  surveydata_crossing crossings[3];
  surveydata_crossing untouched;
  size_t count = 7;
  int i;
  memset(&untouched, 0xEE, sizeof(untouched));
  for (i = 0; i < 3; ++i) {
    const surveydata_area* const area = squares.areas[i];
    memset(crossings, 0xEE, sizeof(crossings));
    why = new_explanation();
    CHECK_STATUS(
        surveydata_area_explain(area, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
        SURVEYDATA_OK);
    CHECK(why.struct_size == sizeof(why) && why.reserved == 0);
    CHECK(why.inside == 1 && why.rule == SURVEYDATA_RULE_PARITY);
    CHECK(why.hz == 1.5 && why.v == 1.25);
    CHECK(why.band_edge == SURVEYDATA_NONE && why.nearest_edge < 4);
    CHECK(0.1 < why.distance && why.distance < 0.3);
    CHECK(count == 2);
    CHECK(crossings[0].edge == 0 && crossings[0].is_counted == 0 && crossings[0].v < 1.25);
    CHECK(crossings[1].edge == 2 && crossings[1].is_counted == 1 && crossings[1].v > 1.25);
    CHECK(crossings[0].reserved == 0);
    CHECK(memcmp(&crossings[2], &untouched, sizeof(untouched)) == 0);
    /* Arrays of other sizes. */
    memset(crossings, 0xEE, sizeof(crossings));
    count = 7;
    why = new_explanation();
    CHECK_STATUS(
        surveydata_area_explain(area, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 1, &count),
        SURVEYDATA_BUFFER_TOO_SMALL);
    CHECK(count == 2 && why.inside == 1 && crossings[0].edge == 0);
    CHECK(memcmp(&crossings[1], &untouched, sizeof(untouched)) == 0);
    CHECK_STATUS(
        surveydata_area_explain(area, 1.5, 1.25, &why, NULL, sizeof(crossings[0]), 0, &count),
        SURVEYDATA_OK);
    CHECK(count == 2);
    CHECK_STATUS(
        surveydata_area_explain(area, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 2, &count),
        SURVEYDATA_OK);
    /* Other rules. */
    CHECK_STATUS(surveydata_area_explain(area, 101.0, 1.25, &why, crossings, sizeof(crossings[0]),
                                         3, &count),
                 SURVEYDATA_OK);
    CHECK(why.rule == SURVEYDATA_RULE_OUT_OF_RANGE && why.inside == 0 && count == 0);
    CHECK(why.nearest_edge == SURVEYDATA_NONE && why.distance == DBL_MAX);
    CHECK_STATUS(
        surveydata_area_explain(area, 3.0, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
        SURVEYDATA_OK);
    CHECK(why.rule == SURVEYDATA_RULE_NO_CROSSING && count == 0);
    CHECK_STATUS(
        surveydata_area_explain(area, 1.5, 1.8, &why, crossings, sizeof(crossings[0]), 3, &count),
        SURVEYDATA_OK);
    CHECK(why.rule == SURVEYDATA_RULE_PARITY || why.rule == SURVEYDATA_RULE_NOTHING_ABOVE);
    CHECK(why.inside == 0);
  }
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.0, 1.0, &why, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_OK);
  CHECK(why.rule == SURVEYDATA_RULE_DOME && why.inside == 1 && why.nearest_edge == 0);
  CHECK_STATUS(
      surveydata_area_explain(tie, 1.2, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_OK);
  CHECK(why.rule == SURVEYDATA_RULE_NOT_VALID && why.inside == 0);

  CHECK_STATUS(
      surveydata_area_explain(NULL, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.5, 1.25, NULL, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.5, 1.25, &why, NULL, sizeof(crossings[0]), 1, &count),
      SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 3, NULL),
      SURVEYDATA_INVALID_ARGUMENT);
  CHECK_STATUS(surveydata_area_explain(dome, 1.5, 1.25, &why, crossings, sizeof(crossings[0]) - 1,
                                       3, &count),
               SURVEYDATA_WRONG_SIZE);
  CHECK_STATUS(surveydata_area_explain(dome, 1.5, 1.25, &why, crossings, sizeof(crossings[0]) + 1,
                                       3, &count),
               SURVEYDATA_WRONG_SIZE);
  why.struct_size = sizeof(why) - 1;
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_WRONG_SIZE);
  why.struct_size = sizeof(why) + 1;
  CHECK_STATUS(
      surveydata_area_explain(dome, 1.5, 1.25, &why, crossings, sizeof(crossings[0]), 3, &count),
      SURVEYDATA_WRONG_SIZE);
  destroy_ways(squares);
  surveydata_area_destroy(dome);
  surveydata_area_destroy(tie);
}

/* The arrays that an area was created from may be freed, and so may the area it was prepared from.
 */
static void test_nothing_is_kept(void) {
  double* const hz = malloc(4 * sizeof(double));
  double* const v = malloc(4 * sizeof(double));
  surveydata_area* area;
  surveydata_area* prepared = NULL;
  surveydata_bounds bounds = new_bounds();
  memcpy(hz, square_hz, sizeof(square_hz));
  memcpy(v, square_v, sizeof(square_v));
  area = make(SURVEYDATA_POLYGON, hz, v, 4);
  free(hz);
  free(v);
  CHECK(contains(area, 1.5, 1.25) == 1);
  CHECK_STATUS(surveydata_area_prepare(area, SURVEYDATA_QUESTIONS_MANY, &prepared), SURVEYDATA_OK);
  surveydata_area_destroy(area);
  CHECK(contains(prepared, 1.5, 1.25) == 1);
  CHECK_STATUS(surveydata_area_bounds(prepared, &bounds), SURVEYDATA_OK);
  CHECK(bounds.hz_min == 1.0);
  surveydata_area_destroy(prepared);
}

int main(void) {
  test_create();
  test_prepare();
  test_faults();
  test_array_of_faults();
  test_bounds();
  test_outline();
  test_contains();
  test_contains_many();
  test_explain();
  test_nothing_is_kept();
  return check_result();
}
