// Sends requests to the worker. The page contains the module and the source of the worker.
import { WorkerEnded, type Progress, type Reply, type Request } from "./protocol";

declare const WORKER_SOURCE: string;

/** Directions are sent in batches: one is prepared while the worker answers another. */
const BATCH = 65_536;

interface Waiting {
  resolve(result: unknown): void;
  reject(error: Error): void;
  onProgress: ((progress: Progress) => void) | undefined;
}

/** A request in progress. */
export interface Job<Result> {
  result: Promise<Result>;
  cancel(): void;
}

/** The 7-bit characters that the text of the module does not use. build.mjs defines it. */
declare const TAKEN: number[];

export function moduleBytes(): Uint8Array {
  const template = document.querySelector<HTMLTemplateElement>("#module")!;
  const text = template.content.textContent!;
  const bytes = new Uint8Array(Number(template.dataset["size"]));
  let length = 0;
  let bits = 0;
  let count = 0;
  const take = (seven: number) => {
    bits = ((bits << 7) | seven) & 0x7fff;
    count += 7;
    if (count < 8) return;
    count -= 8;
    if (length < bytes.length) bytes[length++] = bits >> count;
  };
  for (let i = 0; i < text.length; ++i) {
    const code = text.charCodeAt(i);
    if (code >= 256) take(TAKEN[(code - 256) >> 7]!);
    take(code & 127);
  }
  return bytes;
}

export class Client {
  /** Called after the module has failed and was restarted; its open files are closed. */
  onRestart: () => void = () => undefined;
  /** How often a worker was started. */
  starts = 0;
  private worker!: Worker;
  private readonly waiting = new Map<number, Waiting>();
  private next = 1;
  private loaded!: Promise<unknown>;
  private isLoaded = false;

  constructor() {
    this.start();
  }

  ask<Result>(operation: string, ...values: unknown[]): Promise<Result> {
    return this.run<Result>(undefined, operation, ...values).result;
  }

  run<Result>(
    onProgress: ((progress: Progress) => void) | undefined,
    operation: string,
    ...values: unknown[]
  ): Job<Result> {
    const id = this.next++;
    const result = this.loaded.then(() => this.send<Result>(id, onProgress, operation, values));
    return {
      result,
      cancel: () => this.worker.postMessage({ id: 0, operation: "cancel", values: [id] }),
    };
  }

  private send<Result>(
    id: number,
    onProgress: ((progress: Progress) => void) | undefined,
    operation: string,
    values: unknown[],
    transferred: Transferable[] = [],
  ): Promise<Result> {
    return new Promise<Result>((resolve, reject) => {
      this.waiting.set(id, { resolve: resolve as (result: unknown) => void, reject, onProgress });
      const request: Request = { id, operation, values };
      this.worker.postMessage(request, transferred);
    });
  }

  /**
   * Whether each direction (rad) is inside the area that the worker used last: 1 or 0.
   * For the user's scripts.
   */
  async contains(hz: Float64Array, v: Float64Array): Promise<Uint8Array> {
    await this.loaded;
    const inside = new Uint8Array(hz.length);
    const answers: Promise<void>[] = [];
    for (let from = 0; from < hz.length; from += BATCH) {
      const parts = [hz, v].map((all) => all.slice(from, from + BATCH));
      const answer = this.send<Uint8Array>(
        this.next++, undefined, "containsMany", parts, parts.map((part) => part.buffer));
      answers.push(answer.then((part) => inside.set(part, from)));
    }
    await Promise.all(answers);
    return inside;
  }

  private start(): void {
    const source = URL.createObjectURL(new Blob([WORKER_SOURCE], { type: "text/javascript" }));
    this.worker = new Worker(source);
    URL.revokeObjectURL(source);
    this.worker.onmessage = (event: MessageEvent<Reply>) => this.receive(event.data);
    this.worker.onerror = (event) => this.fail(event.message || "the worker has failed");
    this.isLoaded = false;
    ++this.starts;
    const loaded = this.send(this.next++, undefined, "load", [moduleBytes()]);
    this.loaded = loaded.then(
      () => (this.isLoaded = true),
      (error: Error) => {
        throw new Error(`this browser cannot run the page: ${error.message}`);
      },
    );
    this.loaded.catch(() => undefined);
  }

  private receive(reply: Reply): void {
    const waiting = this.waiting.get(reply.id);
    if (!waiting) return;
    if ("progress" in reply) {
      waiting.onProgress?.(reply.progress);
      return;
    }
    this.waiting.delete(reply.id);
    if ("result" in reply) {
      waiting.resolve(reply.result);
      return;
    }
    waiting.reject(reply.isFatal ? new WorkerEnded(reply.error) : new Error(reply.error));
    if (reply.isFatal) this.fail(reply.error);
  }

  /** Starts another worker: a module that has trapped cannot be used any more. */
  private fail(message: string): void {
    this.worker.terminate();
    for (const waiting of this.waiting.values()) waiting.reject(new WorkerEnded(message));
    this.waiting.clear();
    // A worker that does not even load would only fail again.
    if (!this.isLoaded) return;
    this.start();
    this.onRestart();
  }
}
