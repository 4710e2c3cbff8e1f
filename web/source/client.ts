// Asks the worker. The module and the worker's own source are in the page.
import type { Progress, Reply, Request } from "./protocol";

declare const WORKER_SOURCE: string;

interface Waiting {
  resolve(result: unknown): void;
  reject(error: Error): void;
  onProgress: ((progress: Progress) => void) | undefined;
}

/** Work that is under way. */
export interface Job<Result> {
  result: Promise<Result>;
  cancel(): void;
}

/** The alphabet of the module's text: five characters for four bytes. build.mjs writes it. */
declare const ALPHABET: string;

export function moduleBytes(): Uint8Array {
  const template = document.querySelector<HTMLTemplateElement>("#module")!;
  const text = template.content.textContent!;
  const words = new DataView(new ArrayBuffer((text.length / 5) * 4));
  const values = new Map([...ALPHABET].map((character, value) => [character, value]));
  for (let i = 0; i < text.length; i += 5) {
    let word = 0;
    for (let k = i; k < i + 5; ++k) word = word * 85 + values.get(text[k]!)!;
    words.setUint32((i / 5) * 4, word);
  }
  return new Uint8Array(words.buffer, 0, Number(template.dataset["size"]));
}

export class Client {
  /** Called when the module has failed and was started again; what it had open is gone. */
  onRestart: () => void = () => undefined;
  private worker!: Worker;
  private readonly waiting = new Map<number, Waiting>();
  private next = 1;
  private loaded!: Promise<unknown>;

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
  ): Promise<Result> {
    return new Promise<Result>((resolve, reject) => {
      this.waiting.set(id, { resolve: resolve as (result: unknown) => void, reject, onProgress });
      const request: Request = { id, operation, values };
      this.worker.postMessage(request);
    });
  }

  private start(): void {
    const source = URL.createObjectURL(new Blob([WORKER_SOURCE], { type: "text/javascript" }));
    this.worker = new Worker(source);
    URL.revokeObjectURL(source);
    this.worker.onmessage = (event: MessageEvent<Reply>) => this.receive(event.data);
    this.worker.onerror = (event) => this.fail(event.message || "the worker has failed");
    this.loaded = this.send(this.next++, undefined, "load", [moduleBytes()]);
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
    waiting.reject(new Error(reply.error));
    if (reply.isFatal) this.fail(reply.error);
  }

  /** Starts another worker: a module that has trapped cannot be asked any more. */
  private fail(message: string): void {
    this.worker.terminate();
    for (const waiting of this.waiting.values()) waiting.reject(new Error(message));
    this.waiting.clear();
    this.start();
    this.onRestart();
  }
}
