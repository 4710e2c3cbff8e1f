// A record file: the list, the plots, one record, and saving.
import type { Client, Job } from "./client";
import { button, complain, counted, download, element, FileError, messageOf, printable, say } from "./dom";
import { RecordList, type Range } from "./list";
import { Plot, type TimeRange } from "./plot";
import { WorkerEnded } from "./protocol";
import type { ListRow, Progress, RecordDetail, Series, Summary } from "./protocol";
import { RecordView } from "./record_view";
import { FINDINGS } from "./row_index";

let keys = 0;
/** More rows than these take a moment to draw: until then the whole series is enlarged. */
const MANY_ROWS = 100_000;

export class RecordsView {
  readonly root: HTMLElement;
  private key = ++keys;
  private summary: Summary | undefined;
  private readonly edits = new Map<number, Uint8Array>();
  private isSaved = true;
  private list!: RecordList;
  private plot!: Plot;
  private record!: RecordView;
  private series: Series = [];
  private refining: Job<Series | null> | undefined;
  private opening: Job<Summary> | undefined;
  private shown = -1;
  private loads = 0;
  private readonly status = element("p", { class: "status" });
  private readonly selected = element("p", { class: "selected", "aria-live": "polite" });
  private readonly saveButton = button("Save changed copy", () => this.savePatched(), { disabled: true });
  private readonly bar = element("progress", { "aria-label": "Progress", max: 1, value: 0 });
  private readonly cancelButton = button("Cancel", () => {
    this.opening?.cancel();
    this.exporting?.cancel();
  });
  private exporting: Job<Blob | null> | undefined;

  private readonly name: string;

  constructor(private readonly client: Client, private readonly file: File) {
    this.name = printable(file.name);
    this.list = new RecordList(
      (from, count) => this.ask<ListRow[]>("rows", this.key, from, count),
      (range) => void this.selectedRows(range),
      (row) => void this.open(row),
      (error) => complain(error),
    );
    this.plot = new Plot(client, (range) => void this.selectedTimes(range), (range) => void this.zoomed(range));
    this.record = new RecordView(client, (offset, before, after) => this.keep(offset, before, after));
    this.root = element("div", { class: "records" },
      element("header", {}, element("h2", {}, this.name), this.status,
        element("div", { class: "bar progress" }, this.bar, this.cancelButton)),
      this.plot.root,
      element("section", { class: "table", "aria-label": "List of records" },
        element("div", { class: "bar" },
          button("Previous finding", () => void this.find(-1)),
          button("Next finding", () => void this.find(1)),
          button("Save selection as CSV", () => void this.export(true)),
          button("Save selection as JSON Lines", () => void this.export(false)),
          this.saveButton),
        this.selected,
        this.list.root),
      this.record.root);
  }

  /** Whether closing the page would lose changes. */
  get hasUnsaved(): boolean {
    return !this.isSaved;
  }

  async load(isRestart = false): Promise<void> {
    const order = ++this.loads;
    this.root.ariaBusy = "true";
    try {
      await this.read(isRestart, order);
    } finally {
      if (order === this.loads) this.root.ariaBusy = null;
    }
  }

  private async read(isRestart: boolean, order: number): Promise<void> {
    this.status.textContent = "Reading …";
    this.setProgress({ done: 0, total: this.file.size, rows: 0 });
    this.opening = this.run<Summary>((progress) => {
      this.setProgress(progress);
      // The list of a file that is read again keeps its position.
      if (!isRestart) void this.list.setCount(progress.rows);
    }, "open", this.key, this.file);
    try {
      this.summary = await this.opening.result;
    } catch (error) {
      this.status.textContent = messageOf(error);
      complain(error);
      return;
    } finally {
      if (order === this.loads) {
        this.opening = undefined;
        this.setProgress(undefined);
      }
    }
    const { summary } = this;
    for (const [offset, frame] of this.edits) await this.ask("keep", this.key, offset, frame);
    this.status.textContent = this.describe(summary);
    this.status.classList.toggle("alert", summary.fault !== "" || summary.measurements === 0);
    if (!isRestart) say(`${this.name}: ${this.status.textContent}`);
    this.root.dataset["memory"] = String(summary.memory);
    this.series = await this.ask<Series>("series", this.key);
    this.plot.root.hidden = summary.measurements === 0;
    if (summary.measurements > 0) await this.plot.setSeries(this.series, this.wholeTime, this.wholeTime);
    await this.list.setCount(summary.rows);
    // Rows may have been selected while the file was read.
    if (summary.rows > 0) await this.selectedRows(this.list.selection);
  }

  /** Opens the file again in a restarted worker; changes are kept here. */
  restart(): Promise<void> {
    return this.load(true);
  }

  close(): void {
    this.opening?.cancel();
    this.refining?.cancel();
    void this.client.ask("close", this.key);
  }

  /** As the client's `run`; the message of a failure names the file. */
  private run<Result>(onProgress: ((progress: Progress) => void) | undefined, operation: string, ...values: unknown[]): Job<Result> {
    const job = this.client.run<Result>(onProgress, operation, ...values);
    const result = job.result.catch((error: unknown) => {
      throw error instanceof WorkerEnded ? error : new FileError(this.name, messageOf(error));
    });
    return { ...job, result };
  }
  private ask<Result>(operation: string, ...values: unknown[]): Promise<Result> {
    return this.run<Result>(undefined, operation, ...values).result;
  }

  private describe(summary: Summary): string {
    const parts = [
      counted(summary.measurements, "measurement"),
      counted(summary.others, "other record"),
      `${counted(summary.gaps, "gap")} (${counted(summary.gapBytes, "byte")})`,
      counted(summary.badFrames, "bad frame"),
    ];
    let text = `${parts.join(", ")}.`;
    if (summary.isCancelled) text += " Reading was cancelled: this is a part of the file.";
    if (summary.fault) text += ` ${summary.fault}`;
    else if (summary.measurements === 0 && !summary.isCancelled) {
      text += summary.others > 0
        ? " The file contains records, but no measurement."
        : " This is not a record file: it contains no records.";
    }
    return text;
  }

  private get wholeTime(): TimeRange {
    const from = this.summary!.firstTime / 1000;
    const to = this.summary!.lastTime / 1000;
    return to > from ? { from, to } : { from: from - 1, to: to + 1 };
  }

  private setProgress(progress: Progress | undefined): void {
    this.bar.parentElement!.hidden = progress === undefined;
    if (progress) this.bar.value = progress.total > 0 ? progress.done / progress.total : 0;
  }

  private async selectedRows({ from, to }: Range): Promise<void> {
    this.selected.textContent =
      from === to ? `Row ${from + 1} is selected.` : `Rows ${from + 1} to ${to + 1} are selected.`;
    if (!this.summary || this.summary.measurements === 0) return;
    const first = await this.ask<number>("timeAt", this.key, from);
    const last = await this.ask<number>("timeAt", this.key, to);
    this.plot.setSelection({ from: Math.min(first, last) / 1000, to: Math.max(first, last) / 1000 });
  }

  private async selectedTimes(range: TimeRange): Promise<void> {
    const from = await this.ask<number>("rowAt", this.key, range.from * 1000);
    const to = await this.ask<number>("rowAt", this.key, range.to * 1000);
    this.list.select({ from: Math.min(from, to), to: Math.max(from, to) });
    await this.open(to);
  }

  /** Redraws the visible period from its records: the series of the whole file is coarse. */
  private async zoomed(range: TimeRange): Promise<void> {
    this.refining?.cancel();
    const from = await this.ask<number>("rowAt", this.key, range.from * 1000);
    const to = await this.ask<number>("rowAt", this.key, range.to * 1000);
    const [first, last] = [Math.min(from, to), Math.max(from, to)];
    const isWhole = last - first + 1 >= this.summary!.rows;
    if (isWhole || last - first > MANY_ROWS) void this.plot.setSeries(this.series, range, this.wholeTime);
    if (isWhole) return;
    const margin = 1 + Math.ceil((last - first) / 50);
    const job = this.run<Series | null>(undefined, "partOfSeries", this.key,
      Math.max(first - margin, 0), Math.min(last + margin, this.summary!.rows - 1));
    this.refining = job;
    const series = await job.result;
    if (series && this.refining === job) await this.plot.setSeries(series, range, this.wholeTime);
  }

  private async open(row: number): Promise<void> {
    this.shown = row;
    const detail = await this.ask<RecordDetail | null>("record", this.key, row);
    if (this.shown !== row) return;
    if (detail) this.record.show(detail);
    else this.record.clear("This row is not a measurement: it has no fields.");
  }

  private async find(step: number): Promise<void> {
    const found = await this.ask<number>("find", this.key, FINDINGS, this.list.current + step, step);
    if (found < 0) say("There is no further gap or bad frame in this direction.");
    else this.list.go(found);
  }

  private async export(isCsv: boolean): Promise<void> {
    const { from, to } = this.list.selection;
    this.exporting = this.run<Blob | null>(
      (progress) => this.setProgress(progress), "export", this.key, from, to, isCsv);
    try {
      const content = await this.exporting.result;
      if (content) download(this.nameWith(isCsv ? ".csv" : ".jsonl"), content);
      else say("Saving was cancelled.");
    } catch (error) {
      complain(error);
    } finally {
      this.exporting = undefined;
      this.setProgress(undefined);
    }
  }

  private async keep(offset: number, _before: Uint8Array, after: Uint8Array): Promise<void> {
    this.edits.set(offset, after);
    this.isSaved = false;
    this.saveButton.disabled = false;
    await this.ask("keep", this.key, offset, after);
    await this.list.render();
    await this.open(this.shown);
    say(`${counted(this.edits.size, "record")} changed; the file itself is unchanged; save a copy to keep the changes.`);
  }

  private savePatched(): void {
    const parts: BlobPart[] = [];
    let at = 0;
    for (const [offset, frame] of [...this.edits].sort(([a], [b]) => a - b)) {
      parts.push(this.file.slice(at, offset), frame as BlobPart);
      at = offset + frame.length;
    }
    parts.push(this.file.slice(at));
    download(this.file.name, new Blob(parts));
    this.isSaved = true;
  }

  private nameWith(extension: string): string {
    return this.file.name.replace(/\.[^.]*$/, "") + extension;
  }
}
