// The messages between the page and its worker.

/** The worker ended before it answered. */
export class WorkerEnded extends Error {}

export interface Request {
  id: number;
  operation: string;
  values: unknown[];
}

export type Reply =
  | { id: number; result: unknown }
  | { id: number; error: string; isFatal: boolean }
  | { id: number; progress: Progress };

export interface Progress {
  done: number;
  total: number;
  rows: number;
}

export interface Summary {
  rows: number;
  measurements: number;
  others: number;
  gaps: number;
  gapBytes: number;
  badFrames: number;
  /** Why reading ended before the end of the file; otherwise empty. */
  fault: string;
  isCancelled: boolean;
  firstTime: number;
  lastTime: number;
  /** The memory of the worker in bytes: the module and the rows. */
  memory: number;
}

export interface ListRow {
  row: number;
  kind: number;
  offset: number;
  size: number;
  text: string;
  time?: string;
  hdop?: string;
  vdop?: string;
  pdop?: string;
  satellites?: string;
  name?: string;
}

export interface ByteField {
  at: number;
  size: number;
  blockNumber: number;
  block: string;
  name: string;
  unit: string;
  value: string;
}

export interface RecordDetail {
  text: string;
  isWhole: boolean;
  name: string;
  number: number;
  height: number;
  isSlant: boolean;
  status: string;
  bytes: ByteField[];
  offset: number;
  frame: Uint8Array;
}

export interface Changes {
  name?: string;
  number?: number;
  antenna?: { height: number; isSlant: boolean };
}

/** Runs of time (s) and value in pairs, with NaN between runs: HDOP, VDOP, PDOP, used, in view. */
export type Series = Float64Array[];

export interface TimeTick {
  at: number;
  date: string;
  time: string;
}
export interface ValueTick {
  at: number;
  label: string;
}

export type Place = [number, number];

export interface DirectionAt {
  hz: number;
  v: number;
  hzText: string;
  vText: string;
  plane: Place;
  zenith: Place;
}

/** A number is null if it is too large for a double. */
export interface AreaPoint {
  hz: number | null;
  v: number | null;
  hzText: string;
  vText: string;
  plane: [number | null, number | null];
  zenith: [number | null, number | null];
  distance: number | null;
}

export interface AreaReport {
  name: string;
  kind: string;
  unit: string;
  fullTurn: number;
  decimals: number;
  hzStep: number;
  vStep: number;
  faults: { text: string; points: number[]; edges: number[] }[];
  bounds: {
    hzMin: string;
    hzMax: string;
    vMin: string;
    vMax: string;
    enclosesZenith: boolean;
  } | null;
  points: AreaPoint[];
  outline: { hzText: string; vText: string; distance: string }[];
}

export interface ViewPaths {
  inside: string;
  edges: string;
  faultyEdges: string;
  bounds: string;
  lowest: string;
}
export type View = "plane" | "zenith";
export type AreaPicture = Record<View, ViewPaths>;

export interface Explanation extends DirectionAt {
  inside: boolean;
  rule: string;
  bandEdge: number | null;
  nearestEdge: number | null;
  distance: string;
  crossings: { edge: number; vText: string; isCounted: boolean }[];
}
