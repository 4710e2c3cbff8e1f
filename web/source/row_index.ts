// Where the rows of a file are: 4 bytes a row, whatever the file holds.
import type { Row } from "./module";

export const MEASUREMENT = 1;
export const OTHER = 2;
export const GAP = 4;
export const DAMAGED_HEADER = 8;
export const BAD_FRAME = 16;
export const FINDINGS = GAP | DAMAGED_HEADER | BAD_FRAME;

/** More damaged headers than these are counted and not listed. */
const MOST_DAMAGED = 100_000;

const CHUNK = 65_536;
const BLOCK = 64;
const LARGE = 0xffff;

interface Chunk {
  sizes: Uint16Array;
  kinds: Uint8Array;
  details: Uint8Array;
  /** Of each block of rows: where its first row begins, and the time of its first measurement. */
  offsets: Float64Array;
  times: Float64Array;
}

export class RowIndex {
  count = 0;
  readonly counts = new Map<number, number>();
  gapBytes = 0;
  private readonly chunks: Chunk[] = [];
  private readonly large = new Map<number, number>();
  private readonly damaged = new Map<number, { offset: number; size: number }>();
  private end = 0;

  add(row: Row): void {
    this.counts.set(row.kind, (this.counts.get(row.kind) ?? 0) + 1);
    if (row.kind === GAP) this.gapBytes += row.size;
    if (row.kind === DAMAGED_HEADER && this.damaged.size === MOST_DAMAGED) return;
    const at = this.count % CHUNK;
    if (at === 0) {
      this.chunks.push({
        sizes: new Uint16Array(CHUNK),
        kinds: new Uint8Array(CHUNK),
        details: new Uint8Array(CHUNK),
        offsets: new Float64Array(CHUNK / BLOCK),
        times: new Float64Array(CHUNK / BLOCK).fill(NaN),
      });
    }
    const chunk = this.chunks[this.chunks.length - 1]!;
    const block = Math.floor(at / BLOCK);
    if (at % BLOCK === 0) chunk.offsets[block] = this.end;
    if (row.kind === MEASUREMENT && Number.isNaN(chunk.times[block]!)) {
      chunk.times[block] = row.time;
    }
    chunk.kinds[at] = row.kind;
    chunk.details[at] = row.detail;
    if (row.kind === DAMAGED_HEADER) {
      this.damaged.set(this.count, { offset: row.offset, size: row.size });
    } else {
      chunk.sizes[at] = Math.min(row.size, LARGE);
      if (row.size >= LARGE) this.large.set(this.count, row.size);
      this.end = row.offset + row.size;
    }
    this.count += 1;
  }

  kindOf(row: number): number {
    return this.chunks[Math.floor(row / CHUNK)]!.kinds[row % CHUNK]!;
  }

  get(row: number): Row {
    const chunk = this.chunks[Math.floor(row / CHUNK)]!;
    const at = row % CHUNK;
    const kind = chunk.kinds[at]!;
    const detail = chunk.details[at]!;
    const damaged = this.damaged.get(row);
    if (damaged) return { kind, detail, ...damaged, time: NaN };
    const block = Math.floor(at / BLOCK);
    let offset = chunk.offsets[block]!;
    for (let before = block * BLOCK; before < at; ++before) {
      offset += this.sizeOf(chunk, before, row - at + before);
    }
    return { kind, detail, offset, size: this.sizeOf(chunk, at, row), time: NaN };
  }

  /** The first row of the block whose time is the last one not after `time`. */
  blockAt(time: number): number {
    let best = 0;
    let bestTime = -Infinity;
    this.chunks.forEach((chunk, number) => {
      for (let block = 0; block < chunk.times.length; ++block) {
        const each = chunk.times[block]!;
        if (each <= time && each >= bestTime) {
          bestTime = each;
          best = number * CHUNK + block * BLOCK;
        }
      }
    });
    return Math.min(best, Math.max(this.count - 1, 0));
  }

  /** The next row of one of the kinds from `row` on, in steps of 1 or -1; -1 when there is none. */
  find(kinds: number, row: number, step: number): number {
    for (let at = row; at >= 0 && at < this.count; at += step) {
      if ((this.kindOf(at) & kinds) !== 0) return at;
    }
    return -1;
  }

  get bytes(): number {
    return this.chunks.length * (CHUNK * 4 + (CHUNK / BLOCK) * 16);
  }

  private sizeOf(chunk: Chunk, at: number, row: number): number {
    const size = chunk.sizes[at]!;
    return size === LARGE ? this.large.get(row)! : size;
  }
}
