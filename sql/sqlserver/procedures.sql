-- The procedures the classes call, for SQL Server: the insert procedures, the audit trail id,
-- and the business procedures. Each does what the embedded store's procedure of the same name
-- does (src/providers/embedded/catalog_*.cpp). Run after schema.sql.
SET QUOTED_IDENTIFIER ON
GO

-- @p_Stmt holds an INSERT; it runs on the caller's connection, and the one row answered names
-- the key the server gave the new row (Null when the statement inserted nothing).
CREATE PROCEDURE sp_InsertStatement @p_Stmt NVARCHAR(MAX) AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @id INT, @n INT, @sql NVARCHAR(MAX);
  SET @sql = @p_Stmt + NCHAR(10) + N'SELECT @n = @@ROWCOUNT, @id = CAST(SCOPE_IDENTITY() AS INT)';
  EXEC sp_executesql @sql, N'@id INT OUTPUT, @n INT OUTPUT', @id OUTPUT, @n OUTPUT;
  SELECT CASE WHEN @n = 0 THEN NULL ELSE @id END AS [Identity];
END
GO

CREATE PROCEDURE qsp_InsertStatement @p_Stmt NVARCHAR(MAX) AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @id INT, @n INT, @sql NVARCHAR(MAX);
  SET @sql = @p_Stmt + NCHAR(10) + N'SELECT @n = @@ROWCOUNT, @id = CAST(SCOPE_IDENTITY() AS INT)';
  EXEC sp_executesql @sql, N'@id INT OUTPUT, @n INT OUTPUT', @id OUTPUT, @n OUTPUT;
  SELECT CASE WHEN @n = 0 THEN NULL ELSE @id END AS [Identity];
END
GO

-- The id stays with the connection, where triggers read it as SESSION_CONTEXT(N'AuditTrailID').
CREATE PROCEDURE ZZ_SetAuditTrailID @p_AuditTrailID INT AS
BEGIN
  SET NOCOUNT ON;
  EXEC sp_set_session_context @key = N'AuditTrailID', @value = @p_AuditTrailID;
END
GO

-- Reference data --------------------------------------------------------------------------------

-- The sort procedures take a table's name and a criteria text from the caller, and run them as
-- the caller writes them: the library sends its calls with QUOTED_IDENTIFIER OFF, so the two are
-- created under OFF, and a "..." in the criteria is a string, as it is in the caller's batch.
SET QUOTED_IDENTIFIER OFF
GO

-- Moves one row a place up (-1) or down (1) among the rows the criteria select, by swapping
-- SortSequence with its neighbour there; at either end nothing moves. The key column is the
-- table's name with "Id".
CREATE PROCEDURE qspsys_AdjustSortSequence
  @p_Table NVARCHAR(MAX), @p_Id INT, @p_Increment INT, @p_Criteria NVARCHAR(MAX)
AS
BEGIN
  SET NOCOUNT ON;
  -- The name goes into the statement: letters, digits and _ only, and room for the "Id".
  IF @p_Table IS NULL OR LEN(@p_Table) = 0 OR LEN(@p_Table) > 126
     OR @p_Table COLLATE Latin1_General_BIN2 LIKE N'%[^A-Za-z0-9_]%'
  BEGIN
    DECLARE @bad NVARCHAR(MAX) = N'Invalid object name ''' + ISNULL(@p_Table, N'') + N'''.';
    THROW 50000, @bad, 1;
  END;
  IF @p_Id IS NULL OR @p_Increment IS NULL THROW 50000, N'Invalid use of Null', 1;

  DECLARE @table NVARCHAR(260) = QUOTENAME(@p_Table),
          @key NVARCHAR(260) = QUOTENAME(@p_Table + N'Id'),
          @where NVARCHAR(MAX) =
            CASE WHEN LTRIM(RTRIM(ISNULL(@p_Criteria, N''))) = N'' THEN N'1 = 1'
                 ELSE N'(' + @p_Criteria + N')' END,
          @at INT, @other INT, @otherAt INT, @found INT, @sql NVARCHAR(MAX);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION AdjustSortSequence; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SET @sql = N'SELECT @at = SortSequence, @found = 1 FROM ' + @table + N' WHERE ' + @key +
               N' = @id';
    EXEC sp_executesql @sql, N'@id INT, @at INT OUTPUT, @found INT OUTPUT', @p_Id, @at OUTPUT,
         @found OUTPUT;
    IF @at IS NOT NULL
    BEGIN
      -- Among equal places the lower key is the neighbour.
      SET @sql = N'SELECT TOP 1 @other = ' + @key + N', @otherAt = SortSequence FROM ' + @table +
                 N' WHERE ' + @where + N' AND SortSequence ' +
                 CASE WHEN @p_Increment > 0 THEN N'> @at ORDER BY SortSequence ASC, '
                      ELSE N'< @at ORDER BY SortSequence DESC, ' END + @key + N' ASC';
      EXEC sp_executesql @sql, N'@at INT, @other INT OUTPUT, @otherAt INT OUTPUT', @at,
           @other OUTPUT, @otherAt OUTPUT;
      IF @other IS NOT NULL
      BEGIN
        SET @sql = N'UPDATE ' + @table + N' SET SortSequence = @otherAt WHERE ' + @key +
                   N' = @id; ' +
                   N'UPDATE ' + @table + N' SET SortSequence = @at WHERE ' + @key + N' = @other';
        EXEC sp_executesql @sql, N'@id INT, @at INT, @other INT, @otherAt INT', @p_Id, @at, @other,
             @otherAt;
      END;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION AdjustSortSequence;
    END;
    THROW;
  END CATCH;
END
GO

-- Opens a place at a position ('I...': the rows from there move down one) or closes it ('D...':
-- the rows behind it move up one), among the rows the criteria select.
CREATE PROCEDURE qspsys_InsertDeleteAtSortSequence
  @p_Table NVARCHAR(MAX), @p_SortSequence INT, @p_Action NVARCHAR(100), @p_Criteria NVARCHAR(MAX)
AS
BEGIN
  SET NOCOUNT ON;
  IF @p_Table IS NULL OR LEN(@p_Table) = 0 OR LEN(@p_Table) > 128
     OR @p_Table COLLATE Latin1_General_BIN2 LIKE N'%[^A-Za-z0-9_]%'
  BEGIN
    DECLARE @bad NVARCHAR(MAX) = N'Invalid object name ''' + ISNULL(@p_Table, N'') + N'''.';
    THROW 50000, @bad, 1;
  END;
  IF @p_SortSequence IS NULL THROW 50000, N'Invalid use of Null', 1;

  DECLARE @verb NCHAR(1) = UPPER(LEFT(ISNULL(@p_Action, N''), 1)),
          @where NVARCHAR(MAX) =
            CASE WHEN LTRIM(RTRIM(ISNULL(@p_Criteria, N''))) = N'' THEN N'1 = 1'
                 ELSE N'(' + @p_Criteria + N')' END,
          @sql NVARCHAR(MAX);
  IF @verb = N'I'
    SET @sql = N'UPDATE ' + QUOTENAME(@p_Table) + N' SET SortSequence = SortSequence + 1 WHERE ' +
               @where + N' AND SortSequence >= @at';
  ELSE IF @verb = N'D'
    SET @sql = N'UPDATE ' + QUOTENAME(@p_Table) + N' SET SortSequence = SortSequence - 1 WHERE ' +
               @where + N' AND SortSequence > @at';
  ELSE
  BEGIN
    DECLARE @unknown NVARCHAR(MAX) =
      N'Unknown sort action ''' + ISNULL(@p_Action, N'') + N''': use Insert or Delete.';
    THROW 50000, @unknown, 1;
  END;
  EXEC sp_executesql @sql, N'@at INT', @p_SortSequence;
END
GO

SET QUOTED_IDENTIFIER ON
GO

-- The green inventory is the green-leaf procedures' business; these calls are accepted and do
-- nothing.
CREATE PROCEDURE qsp_CreateGreenInventory AS
BEGIN
  SET NOCOUNT ON;
END
GO

CREATE PROCEDURE qsp_CreatecbGreenInventory AS
BEGIN
  SET NOCOUNT ON;
END
GO

-- Production ------------------------------------------------------------------------------------

-- Posting marks the run as posted ('P'); the security profile and the mode are accepted.
CREATE PROCEDURE sp_PostProductionRun
  @p_SecurityProfileId INT = NULL, @p_ProductionRunId INT, @p_OldMode BIT = NULL
AS
BEGIN
  SET NOCOUNT ON;
  UPDATE PRODUCTIONRUN SET Status = 'P' WHERE PRODUCTIONRUNID = ISNULL(@p_ProductionRunId, 0);
END
GO

-- RetVal 0 when the run may go; otherwise 1 and the reason in ErrorText. A run is posted only
-- by an upper-case 'P'.
CREATE PROCEDURE qsp_CanDeleteProductionRun @p_ProductionRunId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @run INT = ISNULL(@p_ProductionRunId, 0), @status VARCHAR(2), @prizing VARCHAR(2),
          @found BIT = 0, @reason VARCHAR(100);
  SELECT @status = Status, @prizing = PrizingStatus, @found = 1
  FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = @run;
  SET @reason =
    CASE WHEN @found = 0 THEN 'Production run ' + CAST(@run AS VARCHAR(11)) + ' does not exist.'
         WHEN @status COLLATE Latin1_General_BIN2 = 'P'
           THEN 'Production run ' + CAST(@run AS VARCHAR(11)) + ' has been posted.'
         WHEN LTRIM(RTRIM(@prizing)) <> ''
           THEN 'Production run ' + CAST(@run AS VARCHAR(11)) + ' has been released to prizing.'
    END;
  SELECT CASE WHEN @reason IS NULL THEN 0 ELSE 1 END AS RetVal, @reason AS ErrorText;
END
GO

-- The run and everything that hangs from it, by-product tests included, in one transaction.
CREATE PROCEDURE qsp_ZapProductionRun @p_ProductionRunId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @run INT = ISNULL(@p_ProductionRunId, 0);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION ZapProductionRun; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    DELETE FROM BYPRODUCTSTEST
    WHERE ByProductsId IN (SELECT BYPRODUCTSID FROM BYPRODUCTS WHERE ProductionRunId = @run);
    DELETE FROM BYPRODUCTS WHERE ProductionRunId = @run;
    DELETE FROM PRODUCTIONRUNGRADE WHERE ProductionRunId = @run;
    DELETE FROM PICKINGS WHERE ProductionRunId = @run;
    DELETE FROM STEMS WHERE ProductionRunId = @run;
    DELETE FROM PRODUCTIONRUNTARGET WHERE ProductionRunId = @run;
    DELETE FROM PRODUCTIONRUNREDRIED WHERE ProductionRunId = @run;
    DELETE FROM DEGRADATION WHERE ProductionRunId = @run;
    DELETE FROM OVENMOISTURE WHERE ProductionRunId = @run;
    DELETE FROM PACKEDMOISTURE WHERE ProductionRunId = @run;
    DELETE FROM GREENMOISTURE WHERE ProductionRunId = @run;
    DELETE FROM SUGARNICOTINE WHERE ProductionRunId = @run;
    DELETE FROM SAND WHERE ProductionRunId = @run;
    DELETE FROM STRIP WHERE ProductionRunId = @run;
    DELETE FROM LAMINA WHERE ProductionRunId = @run;
    DELETE FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = @run;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION ZapProductionRun;
    END;
    THROW;
  END CATCH;
END
GO

-- Stages the run for prizing ('S'); ErrorCode 0, or 1 for a run that does not exist.
CREATE PROCEDURE qsp_PrizingCreateHeaderStage @p_ProductionRunId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @run INT = ISNULL(@p_ProductionRunId, 0);
  IF NOT EXISTS (SELECT 1 FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = @run)
  BEGIN
    SELECT 1 AS ErrorCode;
    RETURN;
  END;
  UPDATE PRODUCTIONRUN SET PrizingStatus = 'S' WHERE PRODUCTIONRUNID = @run;
  SELECT 0 AS ErrorCode;
END
GO

-- With no swap (0) the run takes the next sequences; else it swaps RunSequence with the run
-- @p_SwapId. A swap partner that does not exist leaves the run without a sequence.
CREATE PROCEDURE qsp_PrizingAssignRunSequence @p_ProductionRunId INT, @p_SwapId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @run INT = ISNULL(@p_ProductionRunId, 0), @swap INT = ISNULL(@p_SwapId, 0);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION AssignRunSequence; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    IF @swap = 0
      UPDATE PRODUCTIONRUN SET
        RunSequence = (SELECT ISNULL(MAX(RunSequence), 0) + 1 FROM PRODUCTIONRUN),
        AbsoluteSequence = (SELECT ISNULL(MAX(AbsoluteSequence), 0) + 1 FROM PRODUCTIONRUN)
      WHERE PRODUCTIONRUNID = @run;
    ELSE
      UPDATE PRODUCTIONRUN SET RunSequence = CASE PRODUCTIONRUNID
          WHEN @run THEN (SELECT RunSequence FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = @swap)
          ELSE (SELECT RunSequence FROM PRODUCTIONRUN WHERE PRODUCTIONRUNID = @run) END
      WHERE PRODUCTIONRUNID IN (@run, @swap);
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION AssignRunSequence;
    END;
    THROW;
  END CATCH;
END
GO

-- A run whose scanning is complete is done ('D'); otherwise it stays as it is.
CREATE PROCEDURE qsp_PrizingSynchRunStatus @p_ProductionRunId INT AS
BEGIN
  SET NOCOUNT ON;
  UPDATE PRODUCTIONRUN SET PrizingStatus = 'D'
  WHERE PRODUCTIONRUNID = ISNULL(@p_ProductionRunId, 0) AND ScanningComplete = 'Y';
END
GO

CREATE PROCEDURE qsp_PrizingReleaseRun @p_ProductionRunId INT AS
BEGIN
  SET NOCOUNT ON;
  UPDATE PRODUCTIONRUN SET PrizingStatus = 'R'
  WHERE PRODUCTIONRUNID = ISNULL(@p_ProductionRunId, 0);
END
GO

-- Closes the run's prizing ('C') and its scanning; the station and the flags are accepted.
CREATE PROCEDURE qsp_PrizingCloseRun
  @p_ProductionRunId INT, @p_StationId INT = NULL, @p_Close BIT = NULL, @p_Force BIT = NULL
AS
BEGIN
  SET NOCOUNT ON;
  UPDATE PRODUCTIONRUN SET PrizingStatus = 'C', ScanningComplete = 'Y'
  WHERE PRODUCTIONRUNID = ISNULL(@p_ProductionRunId, 0);
END
GO

-- 1 while any run is in a grade change ('G'), else 0.
CREATE PROCEDURE qsp_PrizingGradeChangeInProgress AS
BEGIN
  SET NOCOUNT ON;
  SELECT CASE WHEN EXISTS (SELECT 1 FROM PRODUCTIONRUN WHERE PrizingStatus = 'G') THEN 1 ELSE 0 END
    AS InProgress;
END
GO

-- The report's rows: per production grade, its runs and what they were fed; per stem type, the
-- stems' weight. The caller writes the argument list; what it gives is accepted and not used.
CREATE PROCEDURE sp_GenerateProcResultsReport
  @p_Season INT = NULL, @p_CompanyID INT = NULL, @p_FromDate NVARCHAR(50) = NULL,
  @p_ToDate NVARCHAR(50) = NULL
AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION GenerateProcResults; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    INSERT INTO ProcessingResultsReport (ProductionGradeId, RunCount, FedIn)
    SELECT ProductionGradeId, COUNT(*), SUM(ISNULL(FedIn, 0)) FROM PRODUCTIONRUN
    GROUP BY ProductionGradeId ORDER BY ProductionGradeId;
    INSERT INTO ProcessingResultsStems (StemTypeId, TotalNetWeight)
    SELECT StemTypeID, SUM(ISNULL(TotalNetWeight, 0)) FROM STEMS
    GROUP BY StemTypeID ORDER BY StemTypeID;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION GenerateProcResults;
    END;
    THROW;
  END CATCH;
END
GO

-- The laboratory's share of the report lies with the laboratory's tables; the call is accepted
-- and does nothing. The dates come as the client's locale writes them, so they stay text.
CREATE PROCEDURE qsp_LabProcessingResults
  @p_Season INT = NULL, @p_Companies NVARCHAR(4000) = NULL, @p_FromDate NVARCHAR(50) = NULL,
  @p_ToDate NVARCHAR(50) = NULL
AS
BEGIN
  SET NOCOUNT ON;
END
GO

-- Green leaf ------------------------------------------------------------------------------------

-- Posts every receipt not yet posted ('Y', upper case): its weight goes into the grade's
-- inventory, or for a receipt that names a target grade, moves from the grade to the target.
-- The weight lands on the grade's rows that have no bin, or on a new row when there is none.
-- One transaction, so that a failure posts nothing. The contact is taken and not used.
CREATE PROCEDURE sp_PostGreenReceipts @p_ContactId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @receipt INT, @grade INT, @target INT, @weight FLOAT, @uom INT, @g INT, @w FLOAT, @i INT;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION PostGreenReceipts; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    -- One receipt at a time: a grade's first receipt makes its row, the next ones add to it.
    DECLARE receipts CURSOR LOCAL STATIC READ_ONLY FOR
      SELECT GREENRECEIPTID, GreenGradeId, ToGreenGradeId, ISNULL(GrossWeight, 0), WeightUomId
      FROM GREENRECEIPT WHERE ISNULL(Posted, '') COLLATE Latin1_General_BIN2 <> 'Y'
      ORDER BY GREENRECEIPTID;
    OPEN receipts;
    FETCH NEXT FROM receipts INTO @receipt, @grade, @target, @weight, @uom;
    WHILE @@FETCH_STATUS = 0
    BEGIN
      -- First the grade gives (or takes) the weight, then the target takes it.
      SET @i = 0;
      WHILE @i < 2
      BEGIN
        SELECT @g = CASE @i WHEN 0 THEN @grade ELSE @target END,
               @w = CASE WHEN @i = 0 AND @target IS NOT NULL THEN -@weight ELSE @weight END;
        IF @g IS NOT NULL
        BEGIN
          UPDATE GREENINVENTORY SET GrossWeight = ISNULL(GrossWeight, 0) + @w
          WHERE GreenGradeId = @g AND BinLocationId IS NULL;
          IF @@ROWCOUNT = 0
            INSERT INTO GREENINVENTORY (GrossWeight, GreenGradeId, WeightUomId)
            VALUES (@w, @g, @uom);
        END;
        SET @i = @i + 1;
      END;
      UPDATE GREENRECEIPT SET Posted = 'Y' WHERE GREENRECEIPTID = @receipt;
      FETCH NEXT FROM receipts INTO @receipt, @grade, @target, @weight, @uom;
    END;
    CLOSE receipts;
    DEALLOCATE receipts;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION PostGreenReceipts;
    END;
    THROW;
  END CATCH;
END
GO

-- Cages -----------------------------------------------------------------------------------------

-- Keeps the alert in CAGEALERT, where whoever is to be told finds it.
CREATE PROCEDURE qsp_SendAlert @p_AlertId INT, @p_CageId INT AS
BEGIN
  SET NOCOUNT ON;
  INSERT INTO CAGEALERT (AlertId, CageId, AlertTS) VALUES (@p_AlertId, @p_CageId, GETDATE());
END
GO

-- Executes a movement once: each cage of its log, in sequence, takes the grade, weights and
-- status the log row gives it, the values it had moving to the Prev columns, and its contents
-- become the grade and weight that went out. Then the movement is marked executed. A movement
-- already executed ('Y', upper case), or one that does not exist, is left alone.
CREATE PROCEDURE sp_PostCageMovement @p_CageMovementId INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @executed VARCHAR(1), @found BIT = 0, @operator INT, @when DATETIME,
          @cage INT, @grade INT, @net FLOAT, @gross FLOAT, @status INT;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION PostCageMovement; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SELECT @executed = ISNULL(Executed, ''), @operator = OperatorId, @when = MovementTS, @found = 1
    FROM CAGEMOVEMENT WHERE CAGEMOVEMENTID = @p_CageMovementId;
    IF @found = 1 AND @executed COLLATE Latin1_General_BIN2 <> 'Y'
    BEGIN
      -- Row by row: a cage that moves twice in one movement keeps its first move as Prev.
      DECLARE moves CURSOR LOCAL STATIC READ_ONLY FOR
        SELECT CageId, OutGreenGradeId, ISNULL(CageNet, OutWeight), CageGross, ToStatusId
        FROM CAGELOG WHERE CageMovementId = @p_CageMovementId ORDER BY Sequence, CAGELOGID;
      OPEN moves;
      FETCH NEXT FROM moves INTO @cage, @grade, @net, @gross, @status;
      WHILE @@FETCH_STATUS = 0
      BEGIN
        UPDATE CAGE SET PrevOperatorId = OperatorId, PrevGreenGradeId = GreenGradeId,
          PrevGrossWeight = GrossWeight, PrevNetWeight = NetWeight, PrevStatusId = StatusId,
          PrevStatusTS = StatusTS, OperatorId = @operator, GreenGradeId = @grade,
          GrossWeight = @gross, NetWeight = @net, StatusId = ISNULL(@status, StatusId),
          StatusTS = @when
        WHERE CAGEID = @cage;
        DELETE FROM CAGECONTENT WHERE CageId = @cage;
        IF @grade IS NOT NULL
          INSERT INTO CAGECONTENT (CageId, GreenGradeId, NetWeight) VALUES (@cage, @grade, @net);
        FETCH NEXT FROM moves INTO @cage, @grade, @net, @gross, @status;
      END;
      CLOSE moves;
      DEALLOCATE moves;
      UPDATE CAGEMOVEMENT SET Executed = 'Y' WHERE CAGEMOVEMENTID = @p_CageMovementId;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION PostCageMovement;
    END;
    THROW;
  END CATCH;
END
GO

-- Laboratory ------------------------------------------------------------------------------------
-- Sample types of the notes ('ITD' intermediate, 'ADA'/'ADS' advice), and of a sample withdrawn
-- from one ('ISD', '999'): samples of these types are no material for a new note.

-- Intermediate notes: for each production grade of the company with ordinary samples of the
-- season in the span, one note row of type 'ITD' dated at the span's end that counts them, in
-- each sample family (packed, degradation, green moisture).
CREATE PROCEDURE qsp_LabCreateIntermediateNotes
  @p_Season INT, @p_CompanyID INT, @p_FromDate DATETIME, @p_ToDate DATETIME
AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @season INT = ISNULL(@p_Season, 0), @company INT = ISNULL(@p_CompanyID, 0);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION IntermediateNotes; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    INSERT INTO LABPACKED (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    SELECT x.ProductionGradeId, x.LabSeason, @p_ToDate, 'ITD', COUNT(*)
    FROM LABPACKED x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleDateTime BETWEEN @p_FromDate AND @p_ToDate
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
    GROUP BY x.ProductionGradeId, x.LabSeason
    ORDER BY x.ProductionGradeId, x.LabSeason;
    INSERT INTO LABDEGRADATION (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    SELECT x.ProductionGradeId, x.LabSeason, @p_ToDate, 'ITD', COUNT(*)
    FROM LABDEGRADATION x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleDateTime BETWEEN @p_FromDate AND @p_ToDate
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
    GROUP BY x.ProductionGradeId, x.LabSeason
    ORDER BY x.ProductionGradeId, x.LabSeason;
    INSERT INTO LABGREENMOISTURE (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    SELECT x.ProductionGradeId, x.LabSeason, @p_ToDate, 'ITD', COUNT(*)
    FROM LABGREENMOISTURE x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleDateTime BETWEEN @p_FromDate AND @p_ToDate
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
    GROUP BY x.ProductionGradeId, x.LabSeason
    ORDER BY x.ProductionGradeId, x.LabSeason;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION IntermediateNotes;
    END;
    THROW;
  END CATCH;
END
GO

-- Advice notes: per family and production grade of the company, one note row of type 'ADA'
-- linked by its sum rows to each ordinary sample of the season not yet in an advice note, and
-- one LABADVICENOTE row under the next number for the packed cases noted.
CREATE PROCEDURE qsp_LabCreateAdviceNotes @p_CompanyID INT, @p_Season INT AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @season INT = ISNULL(@p_Season, 0), @company INT = ISNULL(@p_CompanyID, 0),
          @cases INT;
  DECLARE @candidates TABLE (SampleId INT PRIMARY KEY, ProductionGradeId INT);
  DECLARE @notes TABLE (NoteId INT, ProductionGradeId INT);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION AdviceNotes; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    -- LABPACKED: the samples to note, one note per grade (the grades in the order of their first
    -- samples), then the links.
    DELETE FROM @candidates;
    DELETE FROM @notes;
    INSERT INTO @candidates (SampleId, ProductionGradeId)
    SELECT x.LABPACKEDID, x.ProductionGradeId
    FROM LABPACKED x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
      AND x.LABPACKEDID NOT IN (SELECT u.ChildID FROM LABPACKEDSUM u
                                JOIN LABPACKED n ON n.LABPACKEDID = u.ParentID
                                WHERE n.SampleType IN ('ADA', 'ADS'));
    INSERT INTO LABPACKED (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    OUTPUT inserted.LABPACKEDID, inserted.ProductionGradeId INTO @notes (NoteId, ProductionGradeId)
    SELECT ProductionGradeId, @season, GETDATE(), 'ADA', COUNT(*) FROM @candidates
    GROUP BY ProductionGradeId ORDER BY MIN(SampleId);
    INSERT INTO LABPACKEDSUM (ParentID, ChildID, SumType)
    SELECT n.NoteId, c.SampleId, 1 FROM @candidates c
    JOIN @notes n ON n.ProductionGradeId = c.ProductionGradeId
    ORDER BY n.NoteId, c.SampleId;
    SELECT @cases = COUNT(*) FROM @candidates;
    -- LABDEGRADATION: the samples to note, one note per grade, then the links.
    DELETE FROM @candidates;
    DELETE FROM @notes;
    INSERT INTO @candidates (SampleId, ProductionGradeId)
    SELECT x.LABDEGRADATIONID, x.ProductionGradeId
    FROM LABDEGRADATION x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
      AND x.LABDEGRADATIONID NOT IN (SELECT u.ChildID FROM LABDEGSUM u
                                JOIN LABDEGRADATION n ON n.LABDEGRADATIONID = u.ParentID
                                WHERE n.SampleType IN ('ADA', 'ADS'));
    INSERT INTO LABDEGRADATION (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    OUTPUT inserted.LABDEGRADATIONID, inserted.ProductionGradeId INTO @notes (NoteId, ProductionGradeId)
    SELECT ProductionGradeId, @season, GETDATE(), 'ADA', COUNT(*) FROM @candidates
    GROUP BY ProductionGradeId ORDER BY MIN(SampleId);
    INSERT INTO LABDEGSUM (ParentID, ChildID, SumType)
    SELECT n.NoteId, c.SampleId, 1 FROM @candidates c
    JOIN @notes n ON n.ProductionGradeId = c.ProductionGradeId
    ORDER BY n.NoteId, c.SampleId;
    -- LABGREENMOISTURE: the samples to note, one note per grade, then the links.
    DELETE FROM @candidates;
    DELETE FROM @notes;
    INSERT INTO @candidates (SampleId, ProductionGradeId)
    SELECT x.LABGREENMOISTUREID, x.ProductionGradeId
    FROM LABGREENMOISTURE x
    JOIN PRODUCTIONGRADE p ON p.PRODUCTIONGRADEID = x.ProductionGradeId
    JOIN GRADE g ON g.GradeId = p.GradeId
    WHERE x.LabSeason = @season AND g.CompanyId = @company
      AND x.SampleType NOT IN ('ITD', 'ISD', 'ADA', 'ADS', '999')
      AND x.LABGREENMOISTUREID NOT IN (SELECT u.ChildID FROM LABGREENMOISTSUM u
                                JOIN LABGREENMOISTURE n ON n.LABGREENMOISTUREID = u.ParentID
                                WHERE n.SampleType IN ('ADA', 'ADS'));
    INSERT INTO LABGREENMOISTURE (ProductionGradeId, LabSeason, SampleDateTime, SampleType, SampleCount)
    OUTPUT inserted.LABGREENMOISTUREID, inserted.ProductionGradeId INTO @notes (NoteId, ProductionGradeId)
    SELECT ProductionGradeId, @season, GETDATE(), 'ADA', COUNT(*) FROM @candidates
    GROUP BY ProductionGradeId ORDER BY MIN(SampleId);
    INSERT INTO LABGREENMOISTSUM (ParentID, ChildID, SumType)
    SELECT n.NoteId, c.SampleId, 1 FROM @candidates c
    JOIN @notes n ON n.ProductionGradeId = c.ProductionGradeId
    ORDER BY n.NoteId, c.SampleId;
    IF @cases > 0
      INSERT INTO LABADVICENOTE (AdviceNoteNum, NumberOfCases, CutOff)
      SELECT ISNULL(MAX(AdviceNoteNum), 0) + 1, @cases, 'N' FROM LABADVICENOTE;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION AdviceNotes;
    END;
    THROW;
  END CATCH;
END
GO

-- Synchronising cuts every advice note off; the season, when given, changes nothing here.
CREATE PROCEDURE qsp_LabSyncAdvice @p_Season INT = NULL AS
BEGIN
  SET NOCOUNT ON;
  UPDATE LABADVICENOTE SET CutOff = 'Y';
END
GO

-- The lock lives in ForeignCount: granted once, while it is Null. Result 1 when granted, else 0.
CREATE PROCEDURE qsp_LabLockHeader @p_LabHeaderId INT AS
BEGIN
  SET NOCOUNT ON;
  UPDATE LABHEADER SET ForeignCount = 1
  WHERE LABHEADERID = ISNULL(@p_LabHeaderId, 0) AND ForeignCount IS NULL;
  SELECT CASE WHEN @@ROWCOUNT = 1 THEN 1 ELSE 0 END AS Result;
END
GO

-- A blank status lifts the hold of a container; any other puts it on hold with that type.
CREATE PROCEDURE qsp_OnHoldCheck
  @p_GradeID INT, @p_ContainerNumber INT, @p_Status NVARCHAR(255), @p_UserID INT
AS
BEGIN
  SET NOCOUNT ON;
  DECLARE @grade INT = ISNULL(@p_GradeID, 0), @container INT = ISNULL(@p_ContainerNumber, 0);
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION OnHoldCheck; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    DELETE FROM ONHOLD WHERE ProductionGradeId = @grade AND ContainerNumber = @container;
    -- Blank means nothing but spaces: LEN does not count trailing ones.
    IF LEN(ISNULL(@p_Status, N'')) > 0
      INSERT INTO ONHOLD (ProductionGradeId, ContainerNumber, OnHoldType, UserID, HoldDate)
      VALUES (@grade, @container, @p_Status, ISNULL(@p_UserID, 0), GETDATE());
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION OnHoldCheck;
    END;
    THROW;
  END CATCH;
END
GO

-- A container counts as prized once a packed sample of its grade has been taken from it.
CREATE PROCEDURE qsp_ContainerPrized @p_GradeID INT, @p_ContainerNumber INT AS
BEGIN
  SET NOCOUNT ON;
  SELECT CASE WHEN EXISTS (SELECT 1 FROM LABPACKED WHERE ProductionGradeId = ISNULL(@p_GradeID, 0)
                             AND ContainerNumber = ISNULL(@p_ContainerNumber, 0))
              THEN 1 ELSE 0 END AS RetVal;
END
GO

-- Adds a packed sample to its header's count: stem, scrap (a by-product) or strip. Result 0;
-- 1 when the sample does not exist or has no header, leaving everything as it was.
CREATE PROCEDURE qsp_LabAddPacked @p_PackedID INT AS
BEGIN
  SET NOCOUNT ON;
  -- @count: which of the header's counts the sample belongs to: 1 stem, 2 scrap, 3 green, 4 the
  -- rest.
  DECLARE @result INT, @header INT, @count INT, @found BIT = 0;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION CountSample; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SELECT @header = LabHeaderID, @found = 1,
           @count = CASE WHEN ISNULL(StemTypeID, 0) <> 0 THEN 1
                         WHEN ISNULL(ByProductID, 0) <> 0 THEN 2
                         ELSE 4 END
    FROM LABPACKED WHERE LABPACKEDID = ISNULL(@p_PackedID, 0);
    IF @found = 0 SET @result = 1;
    ELSE IF ISNULL(@header, 0) = 0 SET @result = 1;
    ELSE
    BEGIN
      UPDATE LABHEADER SET
        PackedStemCount =
          CASE @count WHEN 1 THEN NULLIF(ISNULL(PackedStemCount, 0) + 1, 0) ELSE PackedStemCount END,
        PackedScrapCount =
          CASE @count WHEN 2 THEN NULLIF(ISNULL(PackedScrapCount, 0) + 1, 0) ELSE PackedScrapCount END,
        PackedStripCount =
          CASE @count WHEN 4 THEN NULLIF(ISNULL(PackedStripCount, 0) + 1, 0) ELSE PackedStripCount END
      WHERE LABHEADERID = @header;
      SET @result = CASE WHEN @@ROWCOUNT = 1 THEN 0 ELSE 1 END;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION CountSample;
    END;
    THROW;
  END CATCH;
  SELECT @result AS Result;
END
GO

-- Takes a packed sample out of its header's count again (a count of 1 becomes Null). Result 0;
-- 1 when the sample does not exist, has no header or its count is already empty.
CREATE PROCEDURE qsp_LabRemovePacked @p_PackedID INT AS
BEGIN
  SET NOCOUNT ON;
  -- @count: which of the header's counts the sample belongs to: 1 stem, 2 scrap, 3 green, 4 the
  -- rest.
  DECLARE @result INT, @header INT, @count INT, @found BIT = 0;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION CountSample; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SELECT @header = LabHeaderID, @found = 1,
           @count = CASE WHEN ISNULL(StemTypeID, 0) <> 0 THEN 1
                         WHEN ISNULL(ByProductID, 0) <> 0 THEN 2
                         ELSE 4 END
    FROM LABPACKED WHERE LABPACKEDID = ISNULL(@p_PackedID, 0);
    IF @found = 0 SET @result = 1;
    ELSE IF ISNULL(@header, 0) = 0 SET @result = 1;
    ELSE
    BEGIN
      UPDATE LABHEADER SET
        PackedStemCount =
          CASE @count WHEN 1 THEN NULLIF(ISNULL(PackedStemCount, 0) - 1, 0) ELSE PackedStemCount END,
        PackedScrapCount =
          CASE @count WHEN 2 THEN NULLIF(ISNULL(PackedScrapCount, 0) - 1, 0) ELSE PackedScrapCount END,
        PackedStripCount =
          CASE @count WHEN 4 THEN NULLIF(ISNULL(PackedStripCount, 0) - 1, 0) ELSE PackedStripCount END
      WHERE LABHEADERID = @header
        AND ISNULL(CASE @count WHEN 1 THEN PackedStemCount
                           WHEN 2 THEN PackedScrapCount
                           WHEN 4 THEN PackedStripCount END, 0) > 0;
      SET @result = CASE WHEN @@ROWCOUNT = 1 THEN 0 ELSE 1 END;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION CountSample;
    END;
    THROW;
  END CATCH;
  SELECT @result AS Result;
END
GO

-- Adds a degradation sample to its header's count: stem, scrap (a by-product), green (test
-- type 'GRN', upper case) or strip. Result 0; 1 when the sample does not exist or has no header.
CREATE PROCEDURE qsp_LabAddDegradation @p_DegradationID INT AS
BEGIN
  SET NOCOUNT ON;
  -- @count: which of the header's counts the sample belongs to: 1 stem, 2 scrap, 3 green, 4 the
  -- rest.
  DECLARE @result INT, @header INT, @count INT, @found BIT = 0;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION CountSample; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SELECT @header = LabHeaderID, @found = 1,
           @count = CASE WHEN ISNULL(StemTypeID, 0) <> 0 THEN 1
                         WHEN ISNULL(ByProductID, 0) <> 0 THEN 2
                         WHEN TestType COLLATE Latin1_General_BIN2 = 'GRN' THEN 3
                         ELSE 4 END
    FROM LABDEGRADATION WHERE LABDEGRADATIONID = ISNULL(@p_DegradationID, 0);
    IF @found = 0 SET @result = 1;
    ELSE IF ISNULL(@header, 0) = 0 SET @result = 1;
    ELSE
    BEGIN
      UPDATE LABHEADER SET
        StemDegCount =
          CASE @count WHEN 1 THEN NULLIF(ISNULL(StemDegCount, 0) + 1, 0) ELSE StemDegCount END,
        ScrapDegCount =
          CASE @count WHEN 2 THEN NULLIF(ISNULL(ScrapDegCount, 0) + 1, 0) ELSE ScrapDegCount END,
        GreenDegCount =
          CASE @count WHEN 3 THEN NULLIF(ISNULL(GreenDegCount, 0) + 1, 0) ELSE GreenDegCount END,
        StripDegCount =
          CASE @count WHEN 4 THEN NULLIF(ISNULL(StripDegCount, 0) + 1, 0) ELSE StripDegCount END
      WHERE LABHEADERID = @header;
      SET @result = CASE WHEN @@ROWCOUNT = 1 THEN 0 ELSE 1 END;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION CountSample;
    END;
    THROW;
  END CATCH;
  SELECT @result AS Result;
END
GO

-- Takes a degradation sample out of its header's count again. Result 0; 1 when it has no header
-- or its count is already empty; -2 when the sample is gone already: nothing is left to remove.
CREATE PROCEDURE qsp_LabRemoveDegradation @p_DegradationID INT AS
BEGIN
  SET NOCOUNT ON;
  -- @count: which of the header's counts the sample belongs to: 1 stem, 2 scrap, 3 green, 4 the
  -- rest.
  DECLARE @result INT, @header INT, @count INT, @found BIT = 0;
  DECLARE @nested BIT = CASE WHEN @@TRANCOUNT > 0 THEN 1 ELSE 0 END;
  IF @nested = 1 SAVE TRANSACTION CountSample; ELSE BEGIN TRANSACTION;
  BEGIN TRY
    SELECT @header = LabHeaderID, @found = 1,
           @count = CASE WHEN ISNULL(StemTypeID, 0) <> 0 THEN 1
                         WHEN ISNULL(ByProductID, 0) <> 0 THEN 2
                         WHEN TestType COLLATE Latin1_General_BIN2 = 'GRN' THEN 3
                         ELSE 4 END
    FROM LABDEGRADATION WHERE LABDEGRADATIONID = ISNULL(@p_DegradationID, 0);
    IF @found = 0 SET @result = -2;
    ELSE IF ISNULL(@header, 0) = 0 SET @result = 1;
    ELSE
    BEGIN
      UPDATE LABHEADER SET
        StemDegCount =
          CASE @count WHEN 1 THEN NULLIF(ISNULL(StemDegCount, 0) - 1, 0) ELSE StemDegCount END,
        ScrapDegCount =
          CASE @count WHEN 2 THEN NULLIF(ISNULL(ScrapDegCount, 0) - 1, 0) ELSE ScrapDegCount END,
        GreenDegCount =
          CASE @count WHEN 3 THEN NULLIF(ISNULL(GreenDegCount, 0) - 1, 0) ELSE GreenDegCount END,
        StripDegCount =
          CASE @count WHEN 4 THEN NULLIF(ISNULL(StripDegCount, 0) - 1, 0) ELSE StripDegCount END
      WHERE LABHEADERID = @header
        AND ISNULL(CASE @count WHEN 1 THEN StemDegCount
                           WHEN 2 THEN ScrapDegCount
                           WHEN 3 THEN GreenDegCount
                           WHEN 4 THEN StripDegCount END, 0) > 0;
      SET @result = CASE WHEN @@ROWCOUNT = 1 THEN 0 ELSE 1 END;
    END;
    IF @nested = 0 COMMIT TRANSACTION;
  END TRY
  BEGIN CATCH
    IF XACT_STATE() <> 0
    BEGIN
      IF @nested = 0 OR XACT_STATE() = -1 ROLLBACK TRANSACTION;
      ELSE ROLLBACK TRANSACTION CountSample;
    END;
    THROW;
  END CATCH;
  SELECT @result AS Result;
END
GO

-- Stem length and infraalyzer samples have no count on the header: Result 0 when the sample
-- exists, else 1.
CREATE PROCEDURE qsp_LabAddStemLength @p_LabStemLengthID INT AS
BEGIN
  SET NOCOUNT ON;
  SELECT CASE WHEN EXISTS (SELECT 1 FROM LABSTEMLENGTH
                           WHERE LABSTEMLENGTHID = ISNULL(@p_LabStemLengthID, 0)) THEN 0
              ELSE 1 END AS Result;
END
GO

CREATE PROCEDURE qsp_LabAddInfraalyzer @p_InfraalyzerID INT AS
BEGIN
  SET NOCOUNT ON;
  SELECT CASE WHEN EXISTS (SELECT 1 FROM LABINFRAALYZER
                           WHERE LABINFRAALYZERID = ISNULL(@p_InfraalyzerID, 0)) THEN 0
              ELSE 1 END AS Result;
END
GO

CREATE PROCEDURE qsp_LabRemoveInfraalyzer @p_InfraalyzerID INT AS
BEGIN
  SET NOCOUNT ON;
  SELECT CASE WHEN EXISTS (SELECT 1 FROM LABINFRAALYZER
                           WHERE LABINFRAALYZERID = ISNULL(@p_InfraalyzerID, 0)) THEN 0
              ELSE 1 END AS Result;
END
GO
