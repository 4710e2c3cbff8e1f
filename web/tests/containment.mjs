// The directions for which answers are compared with native ones: the same as in containment_hash.cpp
// and in the test of the page.
export const DIRECTIONS = 10_000_000;
const BLOCK = 1_000_000;

/** Directions in rad from a linear congruential generator, whose arithmetic is exact in doubles. */
export function* directions() {
  let state = 20260101;
  const next = () => {
    state = (state * 48271) % 2147483647;
    return state / 2147483647;
  };
  for (let done = 0; done < DIRECTIONS; done += BLOCK) {
    const hz = new Float64Array(BLOCK);
    const v = new Float64Array(BLOCK);
    for (let i = 0; i < BLOCK; ++i) {
      hz[i] = next() * 6.25;
      v[i] = next() * 3.125;
    }
    yield [hz, v];
  }
}
