// The module: the library and parts of the program, compiled to WebAssembly. Only this file accesses
// its memory.
import instantiate from "surveydata-module";

interface Exports {
  HEAPU8: Uint8Array;
  _malloc(size: number): number;
  _free(address: number): void;
  [name: string]: unknown;
}

/** A row of the list, as the module returns it. */
export interface Row {
  kind: number;
  detail: number;
  offset: number;
  size: number;
  time: number;
  /** The number of the plotted values of a measurement; 0 if they are not kept. */
  plotted: number;
}

export type Argument = number | string | Uint8Array | Float64Array;
/** Reads bytes of the file that is being listed. Returns -1 if reading fails, -2 to pause. */
export type Read = (offset: number, to: Uint8Array) => number;

const ROW_SIZE = 32;

/** A function of the module failed with this message. */
export class ModuleError extends Error {}

export class Module {
  private constructor(private readonly exports: Exports) {}

  static async load(compressed: Uint8Array, read: Read): Promise<Module> {
    const stream = new Blob([compressed as BlobPart]).stream();
    const bytes = await new Response(
      stream.pipeThrough(new DecompressionStream("gzip")),
    ).arrayBuffer();
    let exports: Exports | undefined;
    exports = (await instantiate({
      instantiateWasm(
        imports: WebAssembly.Imports,
        done: (instance: WebAssembly.Instance) => void,
      ) {
        void WebAssembly.instantiate(bytes, imports).then((it) => done(it.instance));
        return {};
      },
      pageRead: (offset: number, to: number, count: number) =>
        read(offset, exports!.HEAPU8.subarray(to, to + count)),
    })) as Exports;
    return new Module(exports);
  }

  /** The size of the memory of the module in bytes. */
  get memory(): number {
    return this.exports.HEAPU8.byteLength;
  }

  /**
   * Calls a function of the module. Texts and arrays are copied into its memory for the call; a text
   * ends with a zero byte there.
   */
  call(name: string, ...values: Argument[]): number {
    const taken: number[] = [];
    try {
      const numbers = values.map((value) => {
        if (typeof value === "number") return value;
        const address = this.put(value);
        taken.push(address);
        return address;
      });
      const run = this.exports[`_${name}`] as (...numbers: number[]) => number;
      return run(...numbers);
    } finally {
      for (const address of taken) this.exports._free(address);
    }
  }

  /** As `call`, for functions that return -1 and a message if they fail. */
  ask(name: string, ...values: Argument[]): number {
    const answer = this.call(name, ...values);
    if (answer === -1) throw new ModuleError(this.text());
    return answer;
  }

  /** Copies into memory that `free` releases. */
  put(value: string | Uint8Array | Float64Array): number {
    const bytes =
      typeof value === "string"
        ? new TextEncoder().encode(`${value}\0`)
        : new Uint8Array(value.buffer, value.byteOffset, value.byteLength);
    const address = this.take(bytes.length);
    this.exports.HEAPU8.set(bytes, address);
    return address;
  }

  take(size: number): number {
    const address = this.exports._malloc(Math.max(size, 1));
    if (address === 0) throw new ModuleError("there is not enough memory");
    return address;
  }

  free(address: number): void {
    this.exports._free(address);
  }

  write(bytes: Uint8Array, address: number): void {
    this.exports.HEAPU8.set(bytes, address);
  }

  copy(address: number, size: number): Uint8Array {
    return this.exports.HEAPU8.slice(address, address + size);
  }

  /** A copy of the result of the last call. */
  bytes(): Uint8Array {
    return this.copy(this.call("page_result"), this.call("page_result_size"));
  }

  get resultSize(): number {
    return this.call("page_result_size");
  }

  text(): string {
    return new TextDecoder().decode(this.bytes());
  }

  json<Value>(): Value {
    return JSON.parse(this.text()) as Value;
  }

  doubles(): Float64Array {
    return new Float64Array(this.bytes().buffer);
  }

  rows(): Row[] {
    const bytes = this.bytes();
    const view = new DataView(bytes.buffer);
    const rows: Row[] = [];
    for (let at = 0; at < bytes.length; at += ROW_SIZE) {
      rows.push({
        offset: view.getFloat64(at, true),
        size: view.getFloat64(at + 8, true),
        time: view.getFloat64(at + 16, true),
        kind: view.getUint8(at + 24),
        detail: view.getUint8(at + 25),
        plotted: view.getUint16(at + 26, true),
      });
    }
    return rows;
  }
}
